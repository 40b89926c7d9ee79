#include "QuickMessageField.h"

#include "ColorCodes.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QPixmap>

void QuickMessageField::insertColorCode(int digit)
{
    insert(colorCodeText(digit));
    setFocus();
}

static QIcon swatch(quint32 rgb)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(Qt::gray);
    painter.setBrush(QColor::fromRgb(rgb));
    painter.drawRect(2, 2, 11, 11);
    return pixmap;
}

void QuickMessageField::addColorCodes(QMenu &menu)
{
    for (const ColorCode &code : colorCodes()) {
        // The code stands in the place of a shortcut, as typing it has the same effect.
        const QString text = code.name + QLatin1Char('\t') + colorCodeText(code.digit);
        menu.addAction(swatch(code.rgb), text, this, [this, digit = code.digit] { insertColorCode(digit); });
    }
}

void QuickMessageField::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    addColorCodes(*menu);
    menu->popup(event->globalPos());
}
