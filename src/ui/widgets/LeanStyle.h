#pragma once

#include <QIcon>
#include <QMap>
#include <QProxyStyle>

#include <utility>

/// The desktop's style, but for what would cost too much.
/// Drawn here are two pictures that the first frame would need, and with them the plugins for pictures: the mark of a
/// menu bar that lacks room, and the frame of a group in Qt's own style. Drawn anew each time are the sections of a
/// header in that style, and icons are read once: Qt keeps a picture of each width of a section and of each reading of
/// an icon, and of every picture that it has dropped again it keeps the name for ever.
class LeanStyle : public QProxyStyle
{
    Q_OBJECT
public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;

private:
    bool isOnQtsOwn() const;

    mutable QMap<std::pair<StandardPixmap, Qt::LayoutDirection>, QIcon> m_icons;
};
