#include "WelcomePage.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QVBoxLayout>

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

/// A text that wraps, measured once for each width; a plain label tries many widths before it is shown.
class Paragraph : public QLabel
{
public:
    Paragraph(const QString &text, QWidget *parent) : QLabel(text, parent)
    {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }
    QSize sizeHint() const override
    {
        if (m_natural.isEmpty())
            m_natural = measured(QWIDGETSIZE_MAX);
        return m_natural;
    }
    QSize minimumSizeHint() const override { return {fontMetrics().averageCharWidth() * 30, sizeHint().height()}; }
    int heightForWidth(int width) const override
    {
        if (width >= sizeHint().width())
            return m_natural.height();
        if (std::exchange(m_width, width) != width)
            m_height = measured(width).height();
        return m_height;
    }

protected:
    void changeEvent(QEvent *event) override
    {
        m_natural = QSize(); // another font is one of the changes
        m_width = -1;
        QLabel::changeEvent(event);
    }

private:
    QSize measured(int width) const
    {
        return fontMetrics().boundingRect(0, 0, width, QWIDGETSIZE_MAX, Qt::TextWordWrap, text()).size();
    }

    mutable QSize m_natural; ///< without wrapping
    mutable int m_width = -1;
    mutable int m_height = 0; ///< at that width
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
