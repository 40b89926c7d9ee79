#pragma once

#include "GuardedFile.h"
#include "RotationKind.h"
#include "XmlDocument.h"

#include <QCoroTask>

#include <QAbstractItemModel>
#include <QItemSelectionModel>
#include <QObject>
#include <QStringList>

#include <functional>

class Alerts;
class Preferences;
class ReorderableRows;

/// The named rotations of one kind, their file, and the table in which one of them is edited: what maps and messages
/// share. The table's rows are its own: the named rotations hold what was saved last. Main thread only.
class RotationStore : public QObject
{
    Q_OBJECT
public:
    /// The most rows that adding can make a table; a file may hold more.
    static constexpr int MaximumRows = 10'000;

    const RotationKind &kind() const { return m_kind; }
    /// The names of all rotations, in the order of a sorted list.
    virtual QStringList names() const = 0;
    virtual bool contains(const QString &name) const = 0;
    /// The name of the open rotation, kept in the preferences; empty when none is open.
    QString currentRotation() const;

    /// The rows of the table, in the order in which they are played.
    virtual QAbstractItemModel *tableModel() = 0;
    virtual QItemSelectionModel *tableSelection() = 0;
    virtual ReorderableRows &rows() = 0;

    /// There is something that no file holds: a change of the table, its order included, or a save that failed. A table
    /// that is what it was again is no change.
    bool hasUnsavedWork() const { return m_hasWriteFailed || hasTableChanged(); }

    /// Fills the table from the named rotation and makes it current; an unknown name empties the table.
    void openRotationNamed(const QString &name);
    /// Makes an empty rotation and opens it; alerts when there is one of that name. Not written until it is saved.
    QCoro::Task<> newRotationNamed(QString name);
    /// Removes the rotation and rewrites the file; alerts when there is none of that name.
    QCoro::Task<> deleteRotationNamed(QString name);
    /// Writes all rotations into the file, or removes it when there are none. @return whether that succeeded; the
    /// failure has been shown.
    QCoro::Task<bool> saveMessageRotation();
    /// Stores the table under the name, writes the file and makes the name current. The table stays as it is.
    /// @return whether the file could be written; the failure has been shown.
    QCoro::Task<bool> saveUIChanges(QString name);
    /// Asks "Yes", "No" or "Cancel" when there is unsaved work, before the table is replaced or lost. "Yes" saves,
    /// through the Save As panel where no name is open. "No" gives up what only the program holds of a save that
    /// failed, and leaves the table as it is: it counts as unsaved until it is replaced.
    /// @return whether to go on: false when the question or the panel was cancelled, or the file could not be written.
    QCoro::Task<bool> saveUnsavedChanges();

    /// Adds rows, given as the texts of their columns, in one step before the first wait; alerts when the table would
    /// get too many, and adds none then. @return the places in the list of those that are no rows and were left out.
    virtual QCoro::Task<QList<qsizetype>> addTexts(QList<QStringList> rows) = 0;
    virtual void deleteSelectedItems() = 0;
    virtual void deleteAllItems() = 0;

    /// Opens the Save As panel, which saves the table unless it is cancelled. Without one, a rotation without a name
    /// cannot be saved from a question.
    void setSaveAsPanel(std::function<QCoro::Task<>()> panel) { m_saveAsPanel = std::move(panel); }

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
    /// @param folder  where the file is; preferences and alerts outlive the store.
    RotationStore(RotationKind kind, Preferences &preferences, Alerts &alerts, const QString &folder, QObject *parent);

    /// Reads the file anew and opens the rotation that was open; keeps everything when there is no file to read.
    QCoro::Task<> load();
    /// Takes the model of the table, which has just been made.
    void watch(const QAbstractItemModel &table);
    QCoro::Task<> tellOfTooMany();

private:
    // What depends on the type of the entries.
    virtual void takeDocument(const XmlDocument &document) = 0;
    /// @param error  why the rotations cannot be stored, in the user's language; not null.
    virtual QByteArray fileContent(QString *error) const = 0;
    /// The table holds what is stored under the name; nothing for a name that is not known.
    virtual bool isTableStoredAs(const QString &name) const = 0;
    virtual void fillTable(const QString &name) = 0;
    virtual void storeTable(const QString &name) = 0;
    virtual void storeEmpty(const QString &name) = 0;
    virtual void removeStored(const QString &name) = 0;
    /// The rotations as they are were written.
    virtual void keepStored() = 0;
    /// Makes the rotations what keepStored() found, and those that were made empty since.
    virtual void returnToKept() = 0;

    bool hasTableChanged() const { return m_isTouched && !isTableStoredAs(currentRotation()); }
    /// Makes the name current, or none when there is no rotation of that name.
    void setCurrentRotation(const QString &name);
    void takeTableAsSaved();
    void giveUpFailedWrites();
    GuardedFile::Outcome writeFile();
    QCoro::Task<> tell(GuardedFile::Outcome outcome);
    QCoro::Task<bool> saveWork();

    const RotationKind m_kind;
    Preferences &m_preferences;
    Alerts &m_alerts;
    GuardedFile m_file;
    std::function<QCoro::Task<>()> m_saveAsPanel;
    bool m_isTouched = false; ///< the table, since it was opened or saved
    bool m_hasWriteFailed = false;
};
