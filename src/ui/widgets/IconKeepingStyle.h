#pragma once

#include <QGuiApplication>
#include <QIcon>
#include <QMap>
#include <QProxyStyle>
#include <QStyleOption>

/// The desktop's style, which reads each icon once. A dialog asks for its icons anew, each reading is another picture
/// to Qt's cache of pictures, and Qt 6.4 never forgets the name of a picture that was in it.
class IconKeepingStyle : public QProxyStyle
{
public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override
    {
        QIcon &kept = m_icons[{icon, option == nullptr ? QGuiApplication::layoutDirection() : option->direction}];
        return kept.isNull() ? kept = QProxyStyle::standardIcon(icon, option, widget) : kept;
    }

private:
    mutable QMap<std::pair<StandardPixmap, Qt::LayoutDirection>, QIcon> m_icons;
};
