#include "ReorderableRows.h"

#include <algorithm>

ReorderableRows::DropOperation ReorderableRows::validateDrop(bool isFromThisTable, bool isCopyWanted) const
{
    if (!isFromThisTable || !isReorderable())
        return DropOperation::None;
    return isCopyWanted && tableObjectsSupportCopying() ? DropOperation::Copy : DropOperation::Move;
}

bool ReorderableRows::acceptDrop(const QList<int> &rows, int row, bool isFromThisTable, bool isCopyWanted)
{
    const DropOperation operation = validateDrop(isFromThisTable, isCopyWanted);
    if (operation == DropOperation::None)
        return false;
    const QList<int> dragged = fromSmallest(rows);
    const int target = std::clamp(row, 0, arrangedCount());
    int above = 0;
    if (operation == DropOperation::Copy) {
        copyObjectsInArrangedObjects(dragged, target);
    } else {
        above = rowsAboveRow(target, dragged);
        moveObjectsInArrangedObjects(dragged, target);
    }
    selectRows(target - above, static_cast<int>(dragged.size()));
    return true;
}

int ReorderableRows::rowsAboveRow(int row, const QList<int> &indexes)
{
    return static_cast<int>(std::count_if(indexes.begin(), indexes.end(), [row](int index) { return index < row; }));
}

void ReorderableRows::deleteSelectionFromTableView()
{
    if (m_deleteSelection)
        m_deleteSelection();
}

QList<int> ReorderableRows::fromSmallest(const QList<int> &indexes) const
{
    QList<int> rows;
    for (const int index : indexes) {
        if (index >= 0 && index < arrangedCount())
            rows.append(index);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}
