#include "ElidingLabel.h"

#include "CutText.h"

#include <QPainter>

ElidingLabel::ElidingLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidingLabel::showText(const QString &text)
{
    setText(text);
    setToolTip(CutText::toolTip(text));
}

QSize ElidingLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12, fontMetrics().height() + 2};
}

void ElidingLabel::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     fontMetrics().elidedText(text().left(CutText::LongestShown), Qt::ElideRight, width()));
}
