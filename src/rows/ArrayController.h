#pragma once

#include "ArrangedRows.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QItemSelectionModel>
#include <QSet>

#include <algorithm>
#include <functional>
#include <numeric>
#include <utility>

/// The rows of one table, as a model, together with the order they are shown in and the selection.
/// A view shows arranged() with selection(). Rows are values; equal keys tell that two rows mean the same thing.
/// Main thread only.
template <typename Row>
class ArrayController : public QAbstractTableModel
{
public:
    struct Column {
        QString title;
        std::function<QString(const Row &)> text;
        std::function<QVariant(const Row &)> sortKey; ///< number or text; null sorts by the text
        Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
        /// Takes a typed text into the row and tells whether that changed it; null where cells cannot be edited.
        std::function<bool(Row &, const QString &)> edit{};
    };
    using KeyOf = std::function<QString(const Row &)>;

    ArrayController(QList<Column> columns, KeyOf keyOf, QObject *parent = nullptr)
        : QAbstractTableModel(parent), m_columns(std::move(columns)), m_keyOf(std::move(keyOf))
    {
        m_arranged.setSourceModel(this);
    }

    ArrangedRows *arranged() { return &m_arranged; }
    QItemSelectionModel *selection() { return &m_selection; }

    const QList<Row> &content() const { return m_rows; }

    /// All rows in the order of the table; rows that the filter hides are among them.
    QList<Row> arrangedObjects() const
    {
        QList<Row> rows;
        rows.reserve(m_rows.size());
        for (const int row : m_arranged.sourceRowsInOrder())
            rows.append(m_rows.at(row));
        return rows;
    }

    /// The row behind `index` of arranged(), which is valid.
    const Row &objectAt(const QModelIndex &index) const { return m_rows.at(m_arranged.mapToSource(index).row()); }

    /// The rows that the filter lets through, in the order of the table.
    QList<Row> shownObjects() const
    {
        QList<Row> rows;
        for (int row = 0; row < m_arranged.rowCount(); ++row)
            rows.append(objectAt(m_arranged.index(row, 0)));
        return rows;
    }

    /// The selected rows in the order of the table; those that the filter hides are among them.
    QList<Row> selectedObjects() const
    {
        QList<Row> rows;
        if (!m_hiddenSelection.isEmpty()) {
            for (const int row : m_arranged.sourceRowsInOrder()) {
                if (m_selection.isRowSelected(shownRow(row)) || isHiddenSelected(row))
                    rows.append(m_rows.at(row));
            }
            return rows;
        }
        QModelIndexList chosen = m_selection.selectedRows();
        std::sort(chosen.begin(), chosen.end());
        for (const QModelIndex &index : std::as_const(chosen))
            rows.append(objectAt(index));
        return rows;
    }

    /// How many of the selected rows the filter hides. It may change without the selection that is seen, which then
    /// tells of a change nevertheless.
    int hiddenSelectedCount() const
    {
        int count = 0;
        for (int row = 0; row < m_rows.size() && !m_hiddenSelection.isEmpty(); ++row)
            count += isHiddenSelected(row) ? 1 : 0;
        return count;
    }

    void addObject(Row row) { insertObjects(static_cast<int>(m_rows.size()), {std::move(row)}); }
    void addObjects(const QList<Row> &rows) { insertObjects(static_cast<int>(m_rows.size()), rows); }

    /// Puts rows before the one at `place` of the content.
    void insertObjects(int place, const QList<Row> &rows)
    {
        if (rows.isEmpty())
            return;
        beginInsertRows({}, place, place + static_cast<int>(rows.size()) - 1);
        m_rows = m_rows.first(place) + rows + m_rows.sliced(place);
        endInsertRows();
    }

    void removeSelected()
    {
        QList<bool> isKept(m_rows.size(), true);
        for (const QModelIndex &index : m_selection.selectedRows())
            isKept[m_arranged.mapToSource(index).row()] = false;
        removeUnkept(isKept);
    }

    void removeAll() { removeUnkept(QList<bool>(m_rows.size(), false)); }

    /// Replaces the rows by `rows`, in their order. Rows with a key that was there are changed in place, and the
    /// selection, hidden or not, stays with the keys, so that a refresh disturbs nothing.
    void mergeContent(const QList<Row> &rows)
    {
        QHash<QString, QList<int>> places; // of each key in the new list, the last one first
        for (int place = static_cast<int>(rows.size()) - 1; place >= 0; --place)
            places[m_keyOf(rows.at(place))].append(place);
        QList<bool> isKept;
        QList<bool> isNew(rows.size(), true);
        QList<int> placeOf; // of each row that stays, in their present order
        for (const Row &row : std::as_const(m_rows)) {
            QList<int> &left = places[m_keyOf(row)];
            isKept.append(!left.isEmpty());
            if (left.isEmpty())
                continue;
            placeOf.append(left.takeLast());
            isNew[placeOf.constLast()] = false;
        }
        const QSet<QString> chosen = selectedKeys();
        m_isUpdating = true;
        removeUnkept(isKept);
        reorder(placeOf);
        insertNew(rows, isNew);
        changeInPlace(rows);
        m_isUpdating = false;
        selectKeys(chosen);
    }

    /// Narrows what is shown. Rows stay selected while they are hidden, unless the user chooses anew.
    void setFilterText(const QString &text)
    {
        const QSet<QString> chosen = selectedKeys();
        m_isUpdating = true;
        m_arranged.setFilterText(text);
        m_isUpdating = false;
        selectKeys(chosen);
    }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid()) // a view without a current cell copies it all the same
            return {};
        const Row &row = m_rows.at(index.row());
        const Column &column = m_columns.at(index.column());
        if (role == Qt::DisplayRole || (role == Qt::EditRole && column.edit))
            return column.text(row);
        if (role == ArrangedRows::SortRole)
            return column.sortKey ? column.sortKey(row) : QVariant(column.text(row));
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(column.alignment);
        return {};
    }
    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
        return index.isValid() && m_columns.at(index.column()).edit ? flags | Qt::ItemIsEditable : flags;
    }
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override
    {
        if (role != Qt::EditRole || (flags(index) & Qt::ItemIsEditable) == 0)
            return false;
        if (m_columns.at(index.column()).edit(m_rows[index.row()], value.toString()))
            emit dataChanged(index, index, {Qt::DisplayRole, Qt::EditRole});
        return true;
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
            return {};
        if (role == Qt::DisplayRole)
            return m_columns.at(section).title;
        if (role == Qt::TextAlignmentRole)
            return QVariant::fromValue(m_columns.at(section).alignment);
        return {};
    }

protected:
    /// Puts the rows into another order, in one announced step: `order` names, for each new place, the row that comes
    /// there, every row once.
    void rearrange(const QList<int> &order)
    {
        if (std::is_sorted(order.begin(), order.end()))
            return;
        emit layoutAboutToBeChanged();
        QList<Row> rows;
        rows.reserve(order.size());
        QList<int> newRowOf(order.size());
        for (const int row : order) {
            newRowOf[row] = static_cast<int>(rows.size());
            rows.append(m_rows.at(row));
        }
        m_rows = std::move(rows);
        for (const QModelIndex &old : persistentIndexList())
            changePersistentIndex(old, index(newRowOf.at(old.row()), old.column()));
        emit layoutChanged();
    }

private:
    /// A choice that replaces the one before replaces also what the filter hides of it; one that adds to it does not.
    class Selection final : public QItemSelectionModel
    {
    public:
        explicit Selection(ArrayController &rows) : QItemSelectionModel(&rows.m_arranged), m_rows(rows) {}

        using QItemSelectionModel::select;
        void select(const QItemSelection &chosen, SelectionFlags command) override
        {
            const bool isReplaced = command.testFlag(Clear) && !m_rows.m_isUpdating && forgetHidden();
            QItemSelectionModel::select(chosen, command);
            if (isReplaced)
                emit selectionChanged({}, {}); // what is seen may be the same
        }
        void clear() override
        {
            const bool isReplaced = forgetHidden();
            QItemSelectionModel::clear();
            if (isReplaced)
                emit selectionChanged({}, {});
        }

    private:
        bool forgetHidden() { return !std::exchange(m_rows.m_hiddenSelection, {}).isEmpty(); }

        ArrayController &m_rows;
    };

    int shownRow(int row) const { return m_arranged.mapFromSource(index(row, 0)).row(); }

    bool isHiddenSelected(int row) const
    {
        return m_hiddenSelection.contains(m_keyOf(m_rows.at(row))) && shownRow(row) < 0;
    }

    QSet<QString> selectedKeys() const
    {
        QSet<QString> keys;
        for (const Row &row : selectedObjects())
            keys.insert(m_keyOf(row));
        return keys;
    }

    void selectKeys(const QSet<QString> &keys)
    {
        QItemSelection chosen;
        m_hiddenSelection.clear();
        for (int row = 0; row < m_rows.size(); ++row) {
            const QString key = m_keyOf(m_rows.at(row));
            if (!keys.contains(key))
                continue;
            const QModelIndex place = m_arranged.mapFromSource(index(row, 0));
            if (place.isValid())
                chosen.select(place, place.siblingAtColumn(columnCount() - 1));
            else
                m_hiddenSelection.insert(key);
        }
        m_isUpdating = true;
        m_selection.select(chosen, QItemSelectionModel::ClearAndSelect);
        m_isUpdating = false;
    }

    void removeUnkept(const QList<bool> &isKept)
    {
        int last = static_cast<int>(m_rows.size()) - 1;
        while (last >= 0) {
            if (isKept.at(last)) {
                --last;
                continue;
            }
            int first = last;
            while (first > 0 && !isKept.at(first - 1))
                --first;
            beginRemoveRows({}, first, last);
            m_rows.remove(first, last - first + 1);
            endRemoveRows();
            last = first - 1;
        }
    }

    void reorder(const QList<int> &placeOf)
    {
        QList<int> order(placeOf.size());
        std::iota(order.begin(), order.end(), 0);
        std::sort(order.begin(), order.end(),
                  [&](int left, int right) { return placeOf.at(left) < placeOf.at(right); });
        rearrange(order);
    }

    void insertNew(const QList<Row> &rows, const QList<bool> &isNew)
    {
        for (qsizetype first = isNew.indexOf(true); first >= 0; first = isNew.indexOf(true, first)) {
            const qsizetype next = isNew.indexOf(false, first);
            const qsizetype end = next < 0 ? rows.size() : next;
            insertObjects(static_cast<int>(first), rows.sliced(first, end - first));
            first = end;
        }
    }

    void changeInPlace(const QList<Row> &rows)
    {
        int first = -1;
        int last = -1;
        for (int row = 0; row < rows.size(); ++row) {
            if (m_rows.at(row) == rows.at(row))
                continue;
            m_rows[row] = rows.at(row);
            first = first < 0 ? row : first;
            last = row;
        }
        if (first >= 0)
            emit dataChanged(index(first, 0), index(last, columnCount() - 1));
    }

    QList<Row> m_rows;
    QList<Column> m_columns;
    KeyOf m_keyOf;
    QSet<QString> m_hiddenSelection;
    ArrangedRows m_arranged;
    Selection m_selection{*this};
    bool m_isUpdating = false;
};
