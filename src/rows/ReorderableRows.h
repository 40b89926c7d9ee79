#pragma once

#include <QList>

#include <functional>
#include <memory>

/// The rows of a table at one moment, to return to. Opaque to whoever keeps it.
class RowsState
{
public:
    RowsState() = default;
    virtual ~RowsState() = default;
    RowsState(const RowsState &) = delete;
    RowsState &operator=(const RowsState &) = delete;
    virtual bool equals(const RowsState &other) const = 0;
};

/// What a table view asks of rows whose order the user decides. Row numbers are those of the table. Main thread only.
class ReorderableRows
{
public:
    enum class DropOperation { None, Copy, Move };

    ReorderableRows() = default;
    virtual ~ReorderableRows() = default;
    ReorderableRows(const ReorderableRows &) = delete;
    ReorderableRows &operator=(const ReorderableRows &) = delete;

    bool draggingEnabled() const { return m_isDraggingEnabled; }
    void setDraggingEnabled(bool isEnabled) { m_isDraggingEnabled = isEnabled; }
    /// Dragging is on, and a place in the table is a place among the rows.
    bool isReorderable() const { return m_isDraggingEnabled && isInOwnOrder(); }

    /// @param isCopyWanted  the user holds the copy modifier; rows that cannot be copied are moved all the same.
    /// @return None for a drag from elsewhere, and for any while isReorderable() is false.
    DropOperation validateDrop(bool isFromThisTable, bool isCopyWanted) const;
    /// Moves or copies `rows` to before `row` and selects them there. A negative `row` means the top.
    /// @return false, with nothing changed, where validateDrop() says None.
    bool acceptDrop(const QList<int> &rows, int row, bool isFromThisTable, bool isCopyWanted);

    virtual bool tableObjectsSupportCopying() const = 0;
    /// Brings the rows together before the one at `toIndex`, in their order. Row numbers outside the table are ignored.
    virtual void moveObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) = 0;
    /// The same with copies; the rows themselves stay. Does nothing for rows that cannot be copied.
    virtual void copyObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) = 0;
    virtual int arrangedCount() const = 0;
    /// The table is neither sorted nor filtered.
    virtual bool isInOwnOrder() const = 0;

    static int rowsAboveRow(int row, const QList<int> &indexes);

    /// Who removes the selected rows when the table's user asks for it; nobody at first.
    void setKeyHandlingDelegate(std::function<void()> deleteSelection)
    {
        m_deleteSelection = std::move(deleteSelection);
    }
    bool hasKeyHandlingDelegate() const { return m_deleteSelection != nullptr; }
    void deleteSelectionFromTableView();

    /// The rows as they are now, with what they hold.
    virtual std::unique_ptr<RowsState> state() const = 0;
    /// Makes the rows what they were: the same rows, with what they held.
    virtual void restore(const RowsState &state) = 0;

protected:
    /// `indexes` that are rows of the table, each once, the smallest first.
    QList<int> fromSmallest(const QList<int> &indexes) const;
    virtual void selectRows(int first, int count) = 0;

private:
    std::function<void()> m_deleteSelection;
    bool m_isDraggingEnabled = true;
};
