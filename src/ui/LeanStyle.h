#pragma once

#include <QProxyStyle>

/// The desktop's style, but for two pictures that the first frame would need, and with them the plugins for pictures:
/// the mark of a menu bar that lacks room, and the frame of a group in Qt's own style. They are drawn here.
class LeanStyle : public QProxyStyle
{
    Q_OBJECT
public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
};
