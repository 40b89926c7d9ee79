#include "RowsUndo.h"

#include "ReorderableRows.h"

#include <QAbstractItemModel>

#include <utility>

class RowsUndo::Step final : public QUndoCommand
{
public:
    Step(RowsUndo &owner, const QString &name, State before, State after)
        : QUndoCommand(name), m_owner(owner), m_before(std::move(before)), m_after(std::move(after))
    {
    }

    void undo() override { m_owner.restore(m_before); }
    void redo() override
    {
        if (std::exchange(m_isDone, false)) // the stack calls it for what the user has just done
            return;
        m_owner.restore(m_after);
    }

private:
    RowsUndo &m_owner;
    const State m_before;
    const State m_after;
    bool m_isDone = true;
};

RowsUndo::RowsUndo(ReorderableRows &rows, QAbstractItemModel &model, QObject *parent)
    : QObject(parent), m_rows(rows), m_state(rows.state())
{
    m_stack.setUndoLimit(MaximumSteps);
    m_turnEnd.setSingleShot(true);
    m_turnEnd.setInterval(0);
    connect(&m_turnEnd, &QTimer::timeout, this, &RowsUndo::flush);
    connect(&model, &QAbstractItemModel::rowsInserted, this, [this] { note(Added); });
    connect(&model, &QAbstractItemModel::rowsRemoved, this, [this] { note(Removed); });
    connect(&model, &QAbstractItemModel::rowsMoved, this, [this] { note(Moved); });
    connect(&model, &QAbstractItemModel::layoutChanged, this, [this] { note(Moved); });
    connect(&model, &QAbstractItemModel::modelReset, this, [this] { note(Edited); });
    connect(&model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &, const QModelIndex &, const QList<int> &roles) {
                if (roles.isEmpty() || roles.contains(Qt::EditRole))
                    note(Edited);
            });
}

RowsUndo::~RowsUndo() = default;

void RowsUndo::note(Change change)
{
    if (m_isRestoring)
        return;
    m_changes |= change;
    m_turnEnd.start();
}

void RowsUndo::flush()
{
    m_turnEnd.stop();
    const int changes = std::exchange(m_changes, 0);
    if (changes == 0 && !m_isFresh)
        return;
    State before = std::exchange(m_state, State(m_rows.state()));
    if (!std::exchange(m_isFresh, false) && !m_state->equals(*before))
        m_stack.push(new Step(*this, nameOf(changes), std::move(before), m_state));
}

QString RowsUndo::nameOf(int changes) const
{
    switch (changes) {
    case Added:
        return tr("Add");
    case Removed:
        return tr("Remove");
    case Moved:
        return tr("Move");
    default:
        return tr("Edit");
    }
}

void RowsUndo::undo()
{
    flush();
    m_stack.undo();
}

void RowsUndo::redo()
{
    flush();
    m_stack.redo();
}

void RowsUndo::reset()
{
    m_stack.clear();
    m_isFresh = true;
    m_turnEnd.start();
}

void RowsUndo::restore(const State &state)
{
    m_isRestoring = true;
    m_rows.restore(*state);
    m_isRestoring = false;
    m_state = state;
    m_changes = 0;
}
