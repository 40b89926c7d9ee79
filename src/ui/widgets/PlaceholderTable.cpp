#include "PlaceholderTable.h"

#include "CutTextDelegate.h"
#include "Hint.h"

#include <QHeaderView>

PlaceholderTable::PlaceholderTable(QWidget *parent) : QTableView(parent), m_hint(new Hint(this))
{
    setItemDelegate(new CutTextDelegate(this));
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

void PlaceholderTable::setModel(QAbstractItemModel *model)
{
    QTableView::setModel(model);
    m_hint->followModel();
}

void PlaceholderTable::setPlaceholder(const QString &text)
{
    m_hint->showText(text);
}

QString PlaceholderTable::placeholder() const
{
    return m_hint->text();
}

void PlaceholderTable::setStretchedColumn(int column)
{
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setSectionResizeMode(column, QHeaderView::Stretch);
}

void PlaceholderTable::sortOnDemand(bool isClearable)
{
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    horizontalHeader()->setSortIndicatorClearable(isClearable);
    setSortingEnabled(true);
}
