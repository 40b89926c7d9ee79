#include "PlaceholderTable.h"

#include <QHeaderView>
#include <QPainter>

PlaceholderTable::PlaceholderTable(QWidget *parent) : QTableView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(true);
}

void PlaceholderTable::setPlaceholder(const QString &text)
{
    if (text == m_placeholder)
        return;
    m_placeholder = text;
    viewport()->update();
}

void PlaceholderTable::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (model() == nullptr || model()->rowCount() > 0 || m_placeholder.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const QRect area = viewport()->rect().adjusted(24, 24, -24, -24);
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, m_placeholder);
}
