#pragma once

#include <QObject>
#include <QTimer>
#include <QUndoStack>

#include <memory>

class QAbstractItemModel;
class ReorderableRows;
class RowsState;

/// Takes back what was done to the rows of a table. It watches the model: whatever happens within one turn of the event
/// loop, by whomever, is one step. Main thread only.
class RowsUndo : public QObject
{
    Q_OBJECT
public:
    static constexpr int MaximumSteps = 100;

    /// `model` shows `rows`; both outlive this.
    RowsUndo(ReorderableRows &rows, QAbstractItemModel &model, QObject *parent = nullptr);
    ~RowsUndo() override;

    /// The steps, each called after what it did, for a menu to show. Its own undo and redo are as good as those here
    /// except in the turn of a change.
    QUndoStack *stack() { return &m_stack; }

public slots:
    void undo();
    void redo();
    /// Forgets every step: what the table holds when this turn ends is where the next ones begin.
    void reset();

private:
    enum Change { Added = 1, Removed = 2, Moved = 4, Edited = 8 };
    using State = std::shared_ptr<const RowsState>;
    class Step;

    void note(Change change);
    /// Makes a step of what happened since the last one.
    void flush();
    void restore(const State &state);
    QString nameOf(int changes) const;

    ReorderableRows &m_rows;
    QUndoStack m_stack;
    QTimer m_turnEnd;
    State m_state; ///< the rows as the last step left them
    int m_changes = 0;
    bool m_isFresh = false; ///< reset() was called in this turn
    bool m_isRestoring = false;
};
