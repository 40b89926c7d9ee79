#pragma once

#include <QList>

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
    ReorderableRows() = default;
    virtual ~ReorderableRows() = default;
    ReorderableRows(const ReorderableRows &) = delete;
    ReorderableRows &operator=(const ReorderableRows &) = delete;

    virtual int arrangedCount() const = 0;
    /// The table is neither sorted nor filtered: a place in it is a place among the rows.
    virtual bool isInOwnOrder() const = 0;
    /// Brings the rows together before the one at `toIndex`, in their order, and selects them. What is outside of the
    /// table counts as its end that is nearer; of `fromIndexes` it is ignored.
    /// @return false, with nothing changed, while isInOwnOrder() is false.
    virtual bool moveObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) = 0;

    /// The rows as they are now, with what they hold.
    virtual std::unique_ptr<RowsState> state() const = 0;
    /// Makes the rows what they were: the same rows, with what they held.
    virtual void restore(const RowsState &state) = 0;
};
