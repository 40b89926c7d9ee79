#pragma once

#include <QCoroTask>

#include <QAbstractItemModel>
#include <QItemSelectionModel>
#include <QObject>
#include <QStringList>

#include <functional>

class ReorderableRows;

/// The named rotations of one kind, their file, and the table in which one of them is edited: what maps and messages
/// share. The table's rows are its own: the named rotations hold what was saved last. Main thread only.
class RotationStore : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// The names of all rotations, in the order of a sorted list.
    virtual QStringList names() const = 0;
    virtual bool contains(const QString &name) const = 0;
    /// The name of the open rotation, kept in the preferences; empty when none is open.
    virtual QString currentRotation() const = 0;

    /// The rows of the table, in the order in which they are played.
    virtual QAbstractItemModel *tableModel() = 0;
    virtual QItemSelectionModel *tableSelection() = 0;
    virtual ReorderableRows &rows() = 0;

    /// Rows were added, removed or edited since the last save or opening, and the table is not what it was again;
    /// dragging them does not count.
    virtual bool unsavedChanges() const = 0;
    /// There is something that no file holds: unsaved changes, a new order, or a save that failed.
    virtual bool hasUnsavedWork() const = 0;

    /// Fills the table from the named rotation and makes it current; an unknown name empties the table.
    virtual void openRotationNamed(const QString &name) = 0;
    /// Makes an empty rotation and opens it; alerts when there is one of that name. Not written until it is saved.
    virtual QCoro::Task<> newRotationNamed(QString name) = 0;
    /// Removes the rotation and rewrites the file; alerts when there is none of that name.
    virtual QCoro::Task<> deleteRotationNamed(QString name) = 0;
    /// Stores the table under the name, writes the file and makes the name current.
    /// @return whether the file could be written; the failure has been shown. The table stays as it is.
    virtual QCoro::Task<bool> saveUIChanges(QString name) = 0;
    /// Asks "Yes", "No" or "Cancel" when there is unsaved work, before the table is replaced or lost. "Yes" saves,
    /// through the Save As panel where no name is open. "No" gives up what only the program holds of a save that
    /// failed, and leaves the table as it is: it counts as unsaved until it is replaced.
    /// @return whether to go on: false when the question or the panel was cancelled, or the file could not be written.
    virtual QCoro::Task<bool> saveUnsavedChanges() = 0;

    virtual void deleteSelectedItems() = 0;
    virtual void deleteAllItems() = 0;

    /// Opens the Save As panel and gives the name that it ended with, empty when it was cancelled. The panel has then
    /// saved the table already. Without one, a rotation without a name cannot be saved from a question.
    void setSaveAsPanel(std::function<QCoro::Task<QString>()> panel) { m_saveAsPanel = std::move(panel); }

signals:
    /// "Rotation: …" is to show this name; empty means that none is open.
    void currentRotationChanged(const QString &name);
    /// A file holds the named rotation as the table shows it.
    void rotationSaved(const QString &name);
    /// The table holds another rotation now: there is nothing to undo.
    void rotationOpened();
    /// hasUnsavedWork() may say something else than before.
    void unsavedWorkTouched();

protected:
    std::function<QCoro::Task<QString>()> m_saveAsPanel;
};
