#include "ArrangedRows.h"

#include <algorithm>
#include <numeric>

ArrangedRows::ArrangedRows(QObject *parent) : QSortFilterProxyModel(parent)
{
    setSortRole(SortRole);
    setDynamicSortFilter(true);
}

void ArrangedRows::setFilterText(const QString &text)
{
    m_filterText = text;
    m_words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    invalidateFilter();
}

QList<int> ArrangedRows::sourceRowsInOrder() const
{
    QList<int> rows(sourceModel()->rowCount());
    std::iota(rows.begin(), rows.end(), 0);
    const int column = sortColumn();
    if (column < 0)
        return rows;
    const bool isAscending = sortOrder() == Qt::AscendingOrder;
    std::stable_sort(rows.begin(), rows.end(), [&](int left, int right) {
        const QModelIndex a = sourceModel()->index(left, column);
        const QModelIndex b = sourceModel()->index(right, column);
        return isAscending ? lessThan(a, b) : lessThan(b, a);
    });
    return rows;
}

bool ArrangedRows::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QVariant a = left.data(SortRole);
    const QVariant b = right.data(SortRole);
    const bool isTextA = a.typeId() == QMetaType::QString;
    const bool isTextB = b.typeId() == QMetaType::QString;
    if (isTextA != isTextB)
        return isTextB;
    if (!isTextA)
        return a.toLongLong() < b.toLongLong();
    return a.toString().compare(b.toString(), Qt::CaseInsensitive) < 0;
}

bool ArrangedRows::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const auto isFound = [&](const QString &word) {
        for (int column = 0; column < sourceModel()->columnCount(sourceParent); ++column) {
            const QModelIndex cell = sourceModel()->index(sourceRow, column, sourceParent);
            if (cell.data(Qt::DisplayRole).toString().contains(word, Qt::CaseInsensitive))
                return true;
        }
        return false;
    };
    return std::all_of(m_words.begin(), m_words.end(), isFound);
}
