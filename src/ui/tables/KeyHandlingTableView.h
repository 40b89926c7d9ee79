#pragma once

#include "PlaceholderTable.h"

#include <functional>

class ReorderableRows;

/// A table whose rows are edited in place with Return, deleted with the Delete key, put into order by dragging or with
/// Alt and the arrow keys, and copied and pasted as text. Nothing can be dropped on it from elsewhere. Qt drags the
/// rows, in an event loop of its own: timers and replies go on meanwhile, and the table outlives it.
class KeyHandlingTableView : public PlaceholderTable
{
    Q_OBJECT
public:
    explicit KeyHandlingTableView(QWidget *parent = nullptr);

    /// The rows to put into order; null for none. They outlive the table, whose model shows them and tells Qt what can
    /// be dragged.
    void setRows(ReorderableRows *rows);
    /// Who deletes the selected rows; nobody at first, and the keys do nothing then.
    void setDeleteHandler(std::function<void()> deleteSelection) { m_deleteSelection = std::move(deleteSelection); }

    /// @return whether the key was Return, Enter, Delete or Backspace and has been handled.
    bool performKeyPressFromKeyDown(const QKeyEvent *event);
    /// Moves the selected rows by one, up for -1 and down for 1; at the edge of the table nothing happens.
    void moveSelection(int step);
    /// What is being typed into a cell counts, as if Return had been pressed.
    void finishEditing();

signals:
    /// A key found nothing to act on, and the system beep sounded.
    void beeped();
    void copyRequested();
    /// The clipboard's text is to become rows. Not empty.
    void pasteRequested(const QString &text);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void startDrag(Qt::DropActions actions) override;

private:
    /// The keys that this table takes before a menu's shortcut does.
    static bool isOwnKey(const QKeyEvent *event);
    bool editSelection();
    bool deleteSelection();
    bool handleOtherKey(const QKeyEvent *event);
    void paste();
    void beep();
    int firstSelectedRow() const;
    /// The first of the selected rows that can be seen, one below the other, for the pointer to carry.
    QPixmap pictureOfSelection() const;

    ReorderableRows *m_rows = nullptr;
    std::function<void()> m_deleteSelection;
};
