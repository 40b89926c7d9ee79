#pragma once

#include "ArrayController.h"
#include "ReorderableRows.h"

#include <QMimeData>

#include <concepts>
#include <unordered_set>

/// An entry that can be duplicated by dragging.
template <typename Entry>
concept CopyableEntry = requires(const Entry &entry)
{
    {
        entry.copy()
        } -> std::same_as<std::shared_ptr<Entry>>;
};

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

    bool tableObjectsSupportCopying() const override { return CopyableEntry<Entry>; }
    int arrangedCount() const override { return this->rowCount(); }
    bool isInOwnOrder() const override
    {
        return m_arrangement->sortColumn() < 0 && m_arrangement->filterText().isEmpty();
    }

    Qt::ItemFlags flags(const QModelIndex &index) const override
    {
        const Qt::ItemFlags flags = Base::flags(index);
        if (!isReorderable())
            return flags;
        return flags | (index.isValid() ? Qt::ItemIsDragEnabled : Qt::ItemIsDropEnabled); // between rows, never on one
    }
    QStringList mimeTypes() const override { return {QStringLiteral("application/x-ferrow-rows")}; }
    Qt::DropActions supportedDropActions() const override
    {
        return CopyableEntry<Entry> ? Qt::MoveAction | Qt::CopyAction : Qt::MoveAction;
    }
    /// The rows that are taken, for a drop in the same table whatever happens to it meanwhile. The caller owns it.
    QMimeData *mimeData(const QModelIndexList &indexes) const override
    {
        if (indexes.isEmpty() || !isReorderable())
            return nullptr;
        auto taken = std::make_unique<TakenRows>();
        for (const QModelIndex &index : indexes)
            taken->rows.insert(this->content().at(index.row()));
        // For whoever asks for a type. The rows themselves leave the program neither as bytes nor otherwise.
        taken->setData(mimeTypes().constFirst(), {});
        return taken.release();
    }
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int, int, const QModelIndex &) const override
    {
        return validateDrop(!placesOf(data).isEmpty(), action == Qt::CopyAction) != DropOperation::None;
    }
    /// @param row     the rows come before this one; -1 behind the last, or before `parent` where that is a row.
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int, const QModelIndex &parent) override
    {
        const QList<int> places = placesOf(data);
        const int before = parent.isValid() ? parent.row() : row < 0 ? arrangedCount() : row;
        return acceptDrop(places, before, !places.isEmpty(), action == Qt::CopyAction);
    }

    void moveObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) override
    {
        const QList<int> fromTop = fromSmallest(fromIndexes);
        const int target = std::clamp(toIndex, 0, arrangedCount());
        QList<int> order;
        order.reserve(arrangedCount());
        const auto appendOthers = [&](int first, int end) {
            for (int row = first; row < end; ++row) {
                if (!std::binary_search(fromTop.begin(), fromTop.end(), row))
                    order.append(row);
            }
        };
        appendOthers(0, target);
        order.append(fromTop);
        appendOthers(target, arrangedCount());
        this->rearrange(order);
    }

    void copyObjectsInArrangedObjects(const QList<int> &fromIndexes, int toIndex) override
    {
        if constexpr (CopyableEntry<Entry>) {
            QList<Row> copies;
            for (const int index : fromSmallest(fromIndexes))
                copies.append(this->content().at(index)->copy());
            this->insertObjects(std::clamp(toIndex, 0, arrangedCount()), copies);
        }
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
        const auto *wanted = dynamic_cast<const State *>(&state);
        if (wanted == nullptr)
            return;
        QList<Row> rows;
        int firstChanged = -1;
        int lastChanged = -1;
        for (const auto &[row, held] : wanted->rows) {
            if (!(*row == held)) {
                *row = held;
                lastChanged = static_cast<int>(rows.size());
                firstChanged = firstChanged < 0 ? lastChanged : firstChanged;
            }
            rows.append(row);
        }
        this->mergeContent(rows);
        if (firstChanged >= 0) {
            emit this->dataChanged(this->index(firstChanged, 0), this->index(lastChanged, this->columnCount() - 1),
                                   {Qt::DisplayRole, Qt::EditRole});
        }
    }

protected:
    void selectRows(int first, int count) override
    {
        QItemSelection rows;
        if (count > 0) {
            rows.select(this->arranged()->index(first, 0),
                        this->arranged()->index(first + count - 1, this->columnCount() - 1));
        }
        this->selection()->select(rows, QItemSelectionModel::ClearAndSelect);
        if (count > 0)
            this->selection()->setCurrentIndex(this->arranged()->index(first, 0), QItemSelectionModel::NoUpdate);
    }

private:
    /// What a drag carries. Qt hands this very object to a drop within the program; whatever comes from elsewhere is
    /// none, and a row of another table is not found here.
    struct TakenRows final : QMimeData {
        std::unordered_set<Row> rows;
    };

    struct State final : RowsState {
        bool equals(const RowsState &other) const override
        {
            const auto *state = dynamic_cast<const State *>(&other);
            return state != nullptr && state->rows == rows;
        }
        QList<std::pair<Row, Entry>> rows;
    };

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
