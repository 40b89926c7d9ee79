#include "ElidingField.h"

#include "CutText.h"

#include <QPainter>

ElidingField::ElidingField(QWidget *parent) : QLineEdit(parent)
{
    setReadOnly(true);
    setFrame(false);
    setFocusPolicy(Qt::ClickFocus);
    QPalette plain = palette();
    plain.setBrush(QPalette::Base, Qt::transparent); // text on the window, not a field to type in
    setPalette(plain);
}

void ElidingField::showText(const QString &text)
{
    if (text == this->text()) // setting it again would lose the selection
        return;
    setText(text);
    setCursorPosition(0);
    setToolTip(CutText::toolTip(text));
}

void ElidingField::paintEvent(QPaintEvent *event)
{
    const QMargins margins = textMargins();
    const QRect area = rect().adjusted(margins.left() + 2, 0, -margins.right() - 2, 0);
    const QString head = displayText().left(CutText::LongestShown);
    if (hasFocus() || fontMetrics().horizontalAdvance(head) <= area.width()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(area, int(alignment()) | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(head, Qt::ElideRight, area.width()));
}
