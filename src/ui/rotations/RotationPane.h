#pragma once

#include "PageDocument.h"
#include "RowsUndo.h"

#include <QCoroTask>

#include <QTimer>
#include <QWidget>

#include <functional>

class ActionQueue;
class Alerts;
class ElidingLabel;
class KeyHandlingTableView;
class QAbstractItemDelegate;
class QDialog;
class QHBoxLayout;
class QLabel;
class QPushButton;
class RotationStore;

/// The open rotation of one kind: its table, and the buttons that change, name, keep and delete rotations.
class RotationPane : public QWidget, public PageDocument
{
    Q_OBJECT
public:
    /// Everything handed in outlives the pane, which is the store's Save As panel from now on.
    RotationPane(RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent = nullptr);
    ~RotationPane() override;

    /// Puts a button before "Remove"; the pane owns it.
    void addButtonAtFront(QPushButton *button);
    /// Puts a button behind "Remove All", at the far end of the row; the pane owns it.
    void addButtonAtEnd(QPushButton *button);
    /// Who draws and edits the rows; outlives the pane.
    void setRowDelegate(QAbstractItemDelegate *delegate);
    /// Draws the rows anew, with what the delegate knows now.
    void updateRows();
    void scrollToEnd();

    void newDocument() override { startFileAction(Sheet::New); }
    void openDocument() override { startFileAction(Sheet::Open); }
    void saveDocument() override;
    void finishEditing() override;
    /// The pane itself handles the keys for it.
    QUndoStack *undoStack() override { return m_undo.stack(); }

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Sheet { New, Open, SaveAs, Delete };

    QPushButton *makeButton(const QString &name, const QString &text, QHBoxLayout *row, std::function<void()> pressed);
    void addButtons();
    void setUpTable();
    void layOut();
    void setTabOrder();
    void currentRotationDidChange(const QString &name);
    void updateControls();
    void copyRows();
    /// Adds one row for each of the lines, and tells once about those that do not fit.
    QCoro::Task<> addRows(QStringList lines);
    QCoro::Task<> tellOfMisfits(QStringList misfits, qsizetype lineCount);

    /// @return false while the sheet or the question of another file button is in front.
    bool beginFileAction();
    void endFileAction();
    void startFileAction(Sheet which);
    QCoro::Task<> runFileAction(Sheet which);
    QCoro::Task<> saveRotation(QString name);
    QDialog *makeSheet(Sheet which);
    /// Opens a sheet and resumes when it was closed.
    QCoro::Task<> showSheet(Sheet which);

    RotationStore &m_store;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    RowsUndo m_undo;
    QTimer m_updateTimer; ///< one look at the rows for all that happens in a turn
    QHBoxLayout *m_rowButtons;
    QHBoxLayout *m_fileButtons;
    bool m_isFileActionRunning = false;

    ElidingLabel *labelCurrentRotation;
    QLabel *labelUnsavedChanges;
    KeyHandlingTableView *tableView;
    QPushButton *removeButton;
    QPushButton *removeAllButton;
    QPushButton *openButton;
    QPushButton *deleteButton;
};
