#include "Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>

static QPalette lightPalette()
{
    QPalette palette(QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf6, 0xf8));
    palette.setColor(QPalette::Highlight, QColor(0x2d, 0x6c, 0xb8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0x6a, 0x6e, 0x76));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x91, 0x96, 0x9e));
    return palette;
}

static QPalette darkPalette()
{
    const QColor text(0xe6, 0xe8, 0xeb);
    const QColor grey(0x7d, 0x82, 0x8a);
    QPalette palette(QColor(0x38, 0x3b, 0x41));
    palette.setColor(QPalette::Base, QColor(0x1d, 0x1f, 0x23));
    palette.setColor(QPalette::AlternateBase, QColor(0x24, 0x27, 0x2b));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3e, 0x45));
    palette.setColor(QPalette::Highlight, QColor(0x3f, 0x7f, 0xcf));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x7a, 0xb4, 0xf0));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::BrightText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, grey);
    }
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0xa0, 0xa8));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x50, 0x55, 0x5d));
    return palette;
}

/// Fusion draws the outline of a box a little darker than the window. On a dark window nobody sees that; a box has no
/// other use for the window's colour.
static QPalette withOutlines(QPalette palette)
{
    palette.setColor(QPalette::Window, QColor(0xb4, 0xb9, 0xc2));
    return palette;
}

void Appearance::apply(const QString &name)
{
    if (name == QLatin1String("light"))
        QApplication::setPalette(lightPalette());
    else if (name == QLatin1String("dark"))
        QApplication::setPalette(darkPalette());
    else
        QApplication::setPalette(QPalette());
    const QPalette now = QApplication::palette();
    const bool isDark = now.color(QPalette::Window).lightness() < now.color(QPalette::WindowText).lightness();
    QApplication::setPalette(isDark ? withOutlines(now) : now, "QCheckBox");
}
