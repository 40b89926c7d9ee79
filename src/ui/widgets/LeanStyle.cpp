#include "LeanStyle.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QStyleOption>

#include <algorithm>
#include <memory>

namespace
{
/// Two chevrons side by side, in the colour of the text at the time of drawing.
class ChevronsEngine : public QIconEngine
{
public:
    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State /*state*/) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const bool isMirrored = QGuiApplication::isRightToLeft();
        const qreal height = rect.height() / 2.0;
        const qreal width = isMirrored ? -height / 2 : height / 2;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(QGuiApplication::palette().color(group, QPalette::ButtonText), height / 5));
        for (const qreal shift : {-width, 0.0}) {
            const QPointF top = QRectF(rect).center() + QPointF(shift, -height / 2);
            painter->drawPolyline(QPolygonF({top, top + QPointF(width, height / 2), top + QPointF(0, height)}));
        }
        painter->restore();
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine *clone() const override { return std::make_unique<ChevronsEngine>(*this).release(); }
};
} // namespace

QIcon LeanStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    if (icon == SP_ToolBarHorizontalExtensionButton)
        return QIcon(std::make_unique<ChevronsEngine>().release()); // which takes it
    if (!isOnQtsOwn())
        return QProxyStyle::standardIcon(icon, option, widget);
    const Qt::LayoutDirection direction = option == nullptr ? QGuiApplication::layoutDirection() : option->direction;
    QIcon &kept = m_icons[{icon, direction}];
    if (kept.isNull())
        kept = QProxyStyle::standardIcon(icon, option, widget);
    return kept;
}

bool LeanStyle::isOnQtsOwn() const
{
    return baseStyle()->name() == QLatin1String("fusion");
}

void LeanStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    if (element != PE_FrameGroupBox || !isOnQtsOwn()) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // The title stands above the frame. Its colour, nearly transparent, suits light windows and dark ones.
    constexpr qreal radius = 3;
    const int title = std::max(pixelMetric(PM_IndicatorHeight), option->fontMetrics.height()) + 3;
    QColor line = option->palette.color(QPalette::WindowText);
    line.setAlpha(40);
    QColor ground = line;
    ground.setAlpha(7);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(line);
    painter->setBrush(ground);
    painter->drawRoundedRect(QRectF(option->rect.adjusted(0, title, -1, -1)).translated(0.5, 0.5), radius, radius);
    painter->restore();
}

static void drawHeaderSection(const QStyleOptionHeader &header, QPainter *painter)
{
    const QRect &area = header.rect;
    const QColor button = header.palette.button().color();
    QLinearGradient ground(area.topLeft(), area.bottomLeft());
    ground.setColorAt(0, button.lighter(104));
    ground.setColorAt(1, button.darker(102));
    painter->save();
    painter->fillRect(area, ground);
    painter->setPen(header.palette.window().color().darker(140));
    painter->drawLine(area.bottomLeft(), area.bottomRight());
    const bool isLast =
        header.position == QStyleOptionHeader::End || header.position == QStyleOptionHeader::OnlyOneSection;
    if (header.orientation == Qt::Horizontal && !isLast) {
        painter->setPen(QColor(0, 0, 0, 40)); // the last is the rightmost, whatever the direction of reading
        painter->drawLine(area.right(), area.top(), area.right(), area.bottom() - 1);
    }
    painter->restore();
}

void LeanStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                            const QWidget *widget) const
{
    const auto *header = qstyleoption_cast<const QStyleOptionHeader *>(option);
    if (element == CE_HeaderSection && header != nullptr && isOnQtsOwn())
        drawHeaderSection(*header, painter);
    else
        QProxyStyle::drawControl(element, option, painter, widget);
}
