#include "WelcomePage.h"

#include <QLabel>
#include <QPainter>
#include <QResizeEvent>
#include <QStyle>
#include <QTextLayout>
#include <QVBoxLayout>
#include <QtMath>

#include <algorithm>
#include <utility>

namespace
{
/// A line in large letters. They are the normal ones, drawn larger: a font of another size takes long to find.
class Headline : public QLabel
{
public:
    using QLabel::QLabel;
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override { return QLabel::minimumSizeHint() * scale; }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.scale(scale, scale);
        painter.drawText(QRectF(QPointF(), QSizeF(size()) / scale), Qt::AlignLeft | Qt::AlignVCenter, text());
    }

private:
    static constexpr qreal scale = 1.8;
};

/// A text that wraps, shaped once for the width that it gets; a plain label shapes it for each width that its layout
/// might give it, and once more to draw it.
class Paragraph : public QLabel
{
public:
    Paragraph(const QString &text, QWidget *parent) : QLabel(text, parent)
    {
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        m_layout.setText(QString(text).replace(QLatin1Char('\n'), QChar::LineSeparator));
        m_layout.setCacheEnabled(true);
    }
    QSize sizeHint() const override
    {
        return {fontMetrics().averageCharWidth() * 30, std::max(m_height, fontMetrics().lineSpacing())};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        m_layout.draw(&painter, QPointF());
    }
    void resizeEvent(QResizeEvent *event) override
    {
        QLabel::resizeEvent(event);
        layOut();
    }
    void changeEvent(QEvent *event) override
    {
        QLabel::changeEvent(event);
        if (std::exchange(m_width, 0) > 0) // another font or direction is one of the changes
            layOut();
    }

private:
    void layOut()
    {
        if (std::exchange(m_width, width()) == width())
            return;
        QTextOption option(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft));
        option.setTextDirection(layoutDirection());
        m_layout.setTextOption(option);
        m_layout.setFont(font());
        qreal height = 0;
        m_layout.beginLayout();
        for (QTextLine line = m_layout.createLine(); line.isValid(); line = m_layout.createLine()) {
            line.setLeadingIncluded(true);
            line.setLineWidth(width());
            line.setPosition(QPointF(0, height));
            height += line.height();
        }
        m_layout.endLayout();
        if (std::exchange(m_height, qCeil(height)) != m_height)
            updateGeometry();
    }

    QTextLayout m_layout;
    int m_width = 0; ///< that it is laid out for
    int m_height = 0;
};
} // namespace

WelcomePage::WelcomePage(QWidget *parent)
    : QWidget(parent), tryDemoServerButton(new QPushButton(tr("Try the Demo Server"), this))
{
    setObjectName(QStringLiteral("welcomePage"));
    auto *title = new Headline(tr("Welcome"), this);
    auto *text = new Paragraph(tr("Enter the address, the port and the remote-console password of your server on the "
                                  "left and press \"Connect\".\n\n"
                                  "Players, maps, settings, messages and the console appear here as soon as the server "
                                  "has answered."),
                               this);
    auto *demoText = new Paragraph(tr("No server at hand? The built-in demo server runs on this computer only and lets "
                                      "you try everything."),
                                   this);
    tryDemoServerButton->setObjectName(QStringLiteral("tryDemoServerButton"));
    tryDemoServerButton->setMinimumSize(tryDemoServerButton->sizeHint() + QSize(24, 8));

    auto *column = new QVBoxLayout;
    for (QWidget *widget : QList<QWidget *>{title, text, demoText})
        column->addWidget(widget);
    column->addWidget(tryDemoServerButton, 0, Qt::AlignLeft);
    column->setSpacing(14);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(48, 24, 48, 24);
    layout->addStretch(1);
    layout->addLayout(column);
    layout->addStretch(2);
}
