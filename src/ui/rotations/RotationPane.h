#pragma once

#include "PageDocument.h"
#include "RotationLabels.h"
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
class QHBoxLayout;
class QLabel;
class QPushButton;
class RotationStore;

/// The open rotation of one kind: its table, and the buttons that change, name, keep and delete rotations.
class RotationPane : public QWidget, public PageDocument
{
    Q_OBJECT
public:
    /// Adds pasted rows, given as the texts of their columns, in one step.
    /// @return the places in the list of those that do not fit and were left out.
    using TakeRows = std::function<QList<qsizetype>(const QList<QStringList> &rows)>;

    /// Everything handed in outlives the pane, which is the store's Save As panel from now on.
    RotationPane(RotationStore &store, const RotationLabels &labels, ActionQueue &actions, Alerts &alerts,
                 QWidget *parent = nullptr);
    ~RotationPane() override;

    /// Puts a button before "Remove"; the pane owns it.
    void addButtonAtFront(QPushButton *button);
    /// Puts a button behind "Remove All", at the far end of the row; the pane owns it.
    void addButtonAtEnd(QPushButton *button);
    /// Who makes rows of what is pasted; nobody at first, and nothing can be pasted then.
    void setTakeRows(TakeRows takeRows) { m_takeRows = std::move(takeRows); }

    /// Who draws and edits the rows; outlives the pane.
    void setRowDelegate(QAbstractItemDelegate *delegate);
    /// Draws the rows anew, with what the delegate knows now.
    void updateRows();
    void scrollToEnd();

    void newDocument() override { newRotationMenuItemClicked(); }
    void openDocument() override { openRotationMenuItemClicked(); }
    void saveDocument() override { saveRotationMenuItemClicked(); }
    void finishEditing() override;
    /// The pane itself handles the keys for it.
    QUndoStack *undoStack() override { return m_undo.stack(); }

public slots:
    void newRotationMenuItemClicked();
    void openRotationMenuItemClicked();
    void saveRotationMenuItemClicked();
    void saveRotationAsMenuItemClicked();
    void deleteRotationMenuItemClicked();
    void deleteSelectedMenuItemClicked();
    void deleteAllMenuItemClicked();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void nameControls();
    void layOut();
    void connectControls();
    void makeCompact(QPushButton *button);
    void setTabOrder();
    void currentRotationDidChange(const QString &name);
    void updateControls();
    /// The selected rows, one a line, their columns separated by tabs.
    QString textOfSelection() const;
    void copyRows();
    /// Adds one row for each line of `text`, and tells once about the lines that do not fit.
    void pasteRows(const QString &text);
    bool beginFileAction();
    void endFileAction();
    QCoro::Task<> newRotation();
    QCoro::Task<> openRotation();
    QCoro::Task<> saveRotation(QString name);
    QCoro::Task<> saveRotationAs();
    QCoro::Task<> deleteRotation();
    QCoro::Task<QString> saveAsPanel();
    QCoro::Task<> tellOfMisfits(QStringList misfits, qsizetype lineCount);

    ElidingLabel *labelCurrentRotation;
    QLabel *labelUnsavedChanges;
    KeyHandlingTableView *tableView;
    QPushButton *removeButton;
    QPushButton *removeAllButton;
    QPushButton *newButton;
    QPushButton *openButton;
    QPushButton *saveButton;
    QPushButton *saveAsButton;
    QPushButton *deleteButton;

    RotationStore &m_store;
    const RotationLabels m_labels;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    RowsUndo m_undo;
    TakeRows m_takeRows;
    QTimer m_updateTimer; ///< one look at the rows for all that happens in a turn
    QHBoxLayout *m_rowButtons;
    QList<QPushButton *> m_frontButtons;
    QList<QPushButton *> m_endButtons;
    bool m_isFileActionRunning = false;
};
