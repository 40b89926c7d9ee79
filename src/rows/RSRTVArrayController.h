#pragma once

#include "ArrayController.h"
#include "ReorderableRows.h"

#include <QMimeData>

#include <concepts>
#include <unordered_set>

/// An array controller whose rows the user puts into the order that counts: by dragging, by the keyboard, and back by
/// undoing. The rows are shared with whoever else edits them. They can be dragged while their table is neither sorted
/// nor filtered. Main thread only.
template <std::equality_comparable Entry>
class RSRTVArrayController : public ArrayController<std::shared_ptr<Entry>>, public ReorderableRows
{
public:
    using Row = std::shared_ptr<Entry>;
    using Base = ArrayController<Row>;

    explicit RSRTVArrayController(QList<typename Base::Column> columns, QObject *parent = nullptr)
        : Base(std::move(columns), keyOf, parent)
    {
    }

    int arrangedCount() const override { return this->rowCount(); }
    bool isInOwnOrder() const override
    {
        return m_arrangement->sortColumn() < 0 && m_arrangement->filterText().isEmpty();
    }

    bool moveObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) override
    {
        if (!isInOwnOrder())
            return false;
        const QSet<int> moved(fromIndexes.begin(), fromIndexes.end());
        const int target = std::clamp(toIndex, 0, arrangedCount());
        QList<int> above;
        QList<int> between;
        QList<int> below;
        for (int row = 0; row < arrangedCount(); ++row)
            (moved.contains(row) ? between : row < target ? above : below).append(row);
        this->rearrange(above + between + below);
        selectRows(static_cast<int>(above.size()), static_cast<int>(between.size()));
        return true;
    }

    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const Qt::ItemFlags flags = Base::flags(index);
        if (!isInOwnOrder())
            return flags;
        return flags | (index.isValid() ? Qt::ItemIsDragEnabled : Qt::ItemIsDropEnabled); // between rows, never on one
    }
    QStringList mimeTypes() const override { return {QStringLiteral("application/x-ferrow-rows")}; }
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    /// The rows that are taken, for a drop in the same table whatever happens to it meanwhile. The caller owns it.
    QMimeData *mimeData(const QModelIndexList &indexes) const override
    {
        if (indexes.isEmpty() || !isInOwnOrder())
            return nullptr;
        auto taken = std::make_unique<TakenRows>();
        for (const QModelIndex &index : indexes)
            taken->rows.insert(this->content().at(index.row()));
        // For whoever asks for a type. The rows themselves leave the program neither as bytes nor otherwise.
        taken->setData(mimeTypes().constFirst(), {});
        return taken.release();
    }
    bool canDropMimeData(const QMimeData *data, Qt::DropAction, int, int, const QModelIndex &) const override
    {
        return isInOwnOrder() && !placesOf(data).isEmpty();
    }
    /// The rows are moved whatever the action: they are never copied.
    /// @param row     the rows come before this one; -1 behind the last, or before `parent` where that is a row.
    bool dropMimeData(const QMimeData *data, Qt::DropAction, int row, int, const QModelIndex &parent) override
    {
        const QList<int> places = placesOf(data);
        const int before = parent.isValid() ? parent.row() : row < 0 ? arrangedCount() : row;
        return !places.isEmpty() && moveObjectsInArrangedObjects(places, before);
    }

    std::unique_ptr<RowsState> state() const override
    {
        auto state = std::make_unique<State>();
        for (const Row &row : this->content())
            state->rows.append({row, *row});
        return state;
    }

    void restore(const RowsState &state) override
    {
        const auto &wanted = static_cast<const State &>(state);
        QList<Row> rows;
        bool isChanged = false;
        for (const auto &[row, held] : wanted.rows) {
            isChanged = isChanged || !(*row == held);
            *row = held;
            rows.append(row);
        }
        this->mergeContent(rows);
        if (isChanged) {
            emit this->dataChanged(this->index(0, 0), this->index(arrangedCount() - 1, this->columnCount() - 1),
                                   {Qt::DisplayRole, Qt::EditRole});
        }
    }

private:
    /// What a drag carries. Qt hands this very object to a drop within the program; whatever comes from elsewhere is
    /// none, and a row of another table is not found here.
    struct TakenRows final : QMimeData {
        std::unordered_set<Row> rows;
    };

    struct State final : RowsState {
        bool equals(const RowsState &other) const override { return static_cast<const State &>(other).rows == rows; }
        QList<std::pair<Row, Entry>> rows;
    };

    void selectRows(int first, int count)
    {
        QItemSelection rows;
        const QModelIndex top = this->arranged()->index(first, 0);
        if (count > 0)
            rows.select(top, this->arranged()->index(first + count - 1, this->columnCount() - 1));
        this->selection()->select(rows, QItemSelectionModel::ClearAndSelect);
        if (count > 0)
            this->selection()->setCurrentIndex(top, QItemSelectionModel::NoUpdate);
    }

    /// Where the rows that were taken are now; those that are gone are left out.
    QList<int> placesOf(const QMimeData *data) const
    {
        QList<int> places;
        const auto *taken = dynamic_cast<const TakenRows *>(data);
        for (int row = 0; taken != nullptr && row < arrangedCount(); ++row) {
            if (taken->rows.contains(this->content().at(row)))
                places.append(row);
        }
        return places;
    }

    /// A row is itself, whatever it holds: two rows may hold the same.
    static QString keyOf(const Row &row) { return QString::number(reinterpret_cast<quintptr>(row.get())); }

    const ArrangedRows *const m_arrangement = this->arranged();
};
