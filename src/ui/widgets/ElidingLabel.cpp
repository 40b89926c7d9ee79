#include "ElidingLabel.h"

#include <QPainter>

/// Longer texts are cut before they are measured: no screen shows more, and measuring costs time.
static constexpr int longestShown = 500;

ElidingLabel::ElidingLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidingLabel::showText(const QString &text)
{
    setText(text);
    // Escaped, or a name with brackets would be taken for rich text.
    setToolTip(QStringLiteral("<span>%1</span>").arg(text.left(4 * longestShown).toHtmlEscaped()));
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
                     fontMetrics().elidedText(text().left(longestShown), Qt::ElideRight, width()));
}
