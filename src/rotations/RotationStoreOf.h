#pragma once

#include "Alerts.h"
#include "GuardedFile.h"
#include "Preferences.h"
#include "RSRTVArrayController.h"
#include "RotationDocument.h"
#include "RotationStore.h"
#include "SortedKeys.h"

#include <QDir>

#include <optional>
#include <utility>

/// What a store of rotations tells the user. %1 stands for the name of a rotation.
struct RotationWords {
    QString creationRefused;
    QString alreadyExists;
    QString deletionRefused;
    QString doesNotExist;
    QString saveQuestion;
    QString loadFailed;
    QString saveFailed;
};

/// The store of one kind of rotation. `Kind` names its types `Entry` and `Rotation`, the `fileName`, the `rootElement`,
/// the preference that holds `currentRotationKey`, and gives its `words()` and `rotationWithXMLNode()`.
template <typename Kind>
class RotationStoreOf : public RotationStore
{
public:
    using Entry = typename Kind::Entry;
    using Rotation = typename Kind::Rotation;
    /// Every named rotation, replaced as a whole on every change.
    using Dictionary = typename RotationDocument<Kind>::Dictionary;

    /// The most rows that adding can make a table; a file may hold more.
    static constexpr int MaximumRows = 10'000;

    QStringList names() const override { return sortedKeys(dictionary()); }
    bool contains(const QString &name) const override { return m_rotations && m_rotations->contains(name); }
    QString currentRotation() const override { return m_preferences.value(Kind::currentRotationKey).toString(); }
    /// Makes the name current, or none when there is no rotation of that name.
    void setCurrentRotation(const QString &name)
    {
        const QString current = contains(name) ? name : QString();
        m_preferences.setValue(Kind::currentRotationKey, current);
        emit currentRotationChanged(current);
    }
    /// The version that the file names; empty until one was read.
    QString version() const { return m_version; }
    /// The rows of the table, in the order in which they are played.
    QList<std::shared_ptr<Entry>> entries() const { return m_table.arrangedObjects(); }
    int rowCount() const { return m_table.rowCount(); }

    QAbstractItemModel *tableModel() override { return m_table.arranged(); }
    QItemSelectionModel *tableSelection() override { return m_table.selection(); }
    ReorderableRows &rows() override { return m_table; }
    bool unsavedChanges() const override { return m_isEdited && !isTableSaved(currentRotation()); }
    bool hasUnsavedWork() const override { return m_hasWriteFailed || hasTableChanged(); }

    void openRotationNamed(const QString &name) override
    {
        if (!isTableSaved(name)) { // else what is on air, or selected, stays so
            m_table.removeAll();
            m_table.addObjects(copiesOf(dictionary().value(name).rotationList));
        }
        setCurrentRotation(name);
        takeTableAsSaved();
        emit rotationOpened();
    }

    QCoro::Task<> newRotationNamed(QString name) override
    {
        if (contains(name)) {
            const RotationWords words = Kind::words();
            const QString text = words.alreadyExists.arg(name);
            co_await m_alerts.run(words.creationRefused, text);
            co_return;
        }
        if (m_rotations) {
            Rotation rotation;
            rotation.name = name;
            store(rotation);
            if (m_keptRotations)
                m_keptRotations->insert(name, rotation);
        }
        openRotationNamed(name);
    }

    QCoro::Task<> deleteRotationNamed(QString name) override
    {
        if (!contains(name)) {
            const RotationWords words = Kind::words();
            const QString text = words.doesNotExist.arg(name);
            co_await m_alerts.run(words.deletionRefused, text);
            co_return;
        }
        Dictionary changed = dictionary();
        changed.remove(name);
        m_rotations = changed;
        const GuardedFile::Outcome outcome = writeFile();
        openRotationNamed(currentRotation());
        co_await tell(outcome);
    }

    /// Writes all rotations into the file, or removes it when there are none. @return whether that succeeded.
    QCoro::Task<bool> saveMessageRotation()
    {
        const GuardedFile::Outcome outcome = writeFile();
        co_await tell(outcome);
        co_return outcome.isSuccess();
    }

    QCoro::Task<bool> saveUIChanges(QString name) override
    {
        Rotation rotation = dictionary().value(name);
        rotation.name = name;
        rotation.rotationList = copiesOf(entries());
        store(rotation);
        const GuardedFile::Outcome outcome = writeFile();
        setCurrentRotation(name);
        takeTableAsSaved();
        if (outcome.isSuccess())
            emit rotationSaved(name);
        co_await tell(outcome);
        co_return outcome.isSuccess();
    }

    QCoro::Task<bool> saveUnsavedChanges() override
    {
        if (!hasUnsavedWork())
            co_return true;
        const QString title = saveQuestionTitle();
        const QString text = Kind::words().saveQuestion;
        const QStringList buttons{RotationStore::tr("Yes"), RotationStore::tr("No"), RotationStore::tr("Cancel")};
        const int pressed = co_await m_alerts.run(title, text, buttons);
        if (pressed == 1)
            giveUpFailedWrites();
        if (pressed != 0)
            co_return pressed == 1;
        const bool isSaved = co_await saveTable();
        co_return isSaved;
    }

    /// Appends rows in one step, before the first wait; alerts when the table would get too many, and adds none then.
    QCoro::Task<> addEntries(QList<Entry> added)
    {
        if (m_table.rowCount() + added.size() > MaximumRows) {
            const QString text =
                RotationStore::tr("A rotation can have %1 entries. Nothing was added.").arg(MaximumRows);
            co_await m_alerts.run(RotationStore::tr("Too Many Entries"), text);
            co_return;
        }
        QList<std::shared_ptr<Entry>> newRows;
        for (const Entry &entry : added)
            newRows.append(std::make_shared<Entry>(entry));
        m_table.addObjects(newRows);
    }

    /// Makes these the rows of the table, in one step, before the first wait; alerts when they are too many, and
    /// changes nothing then.
    QCoro::Task<> replaceEntries(QList<Entry> entries)
    {
        if (entries.size() <= MaximumRows)
            m_table.removeAll();
        co_await addEntries(entries);
    }

    void deleteSelectedItems() override { m_table.removeSelected(); }
    void deleteAllItems() override { m_table.removeAll(); }

protected:
    using Columns = QList<typename RSRTVArrayController<Entry>::Column>;

    /// @param folder  where the file is; preferences and alerts outlive the store.
    RotationStoreOf(Preferences &preferences, Alerts &alerts, const QString &folder, Columns columns,
                    std::optional<Dictionary> rotations, QObject *parent)
        : RotationStore(parent), m_preferences(preferences), m_alerts(alerts),
          m_file(QDir(folder).filePath(QLatin1String(Kind::fileName)), rotationReading.maximumSize),
          m_rotations(std::move(rotations)), m_keptRotations(m_rotations), m_table(std::move(columns))
    {
        connect(&m_table, &QAbstractItemModel::rowsRemoved, this, [this] { noteChange(); });
        connect(&m_table, &QAbstractItemModel::dataChanged, this, [this] { noteChange(); });
        connect(&m_table, &QAbstractItemModel::rowsInserted, this, [this] { noteChange(); });
        connect(&m_table, &QAbstractItemModel::layoutChanged, this, [this] { noteOrder(); });
        m_table.setKeyHandlingDelegate([this] { deleteSelectedItems(); });
    }

    /// Nothing at first where a kind's store begins without a dictionary.
    const std::optional<Dictionary> &rotations() const { return m_rotations; }
    Dictionary dictionary() const { return m_rotations.value_or(Dictionary()); }

    /// Reads the file anew and opens the rotation that was open; keeps everything when there is no file to read.
    QCoro::Task<> load()
    {
        if (!m_file.exists())
            co_return;
        QString error;
        std::optional<XmlDocument> document;
        if (const std::optional<QByteArray> bytes = m_file.read(&error))
            document = XmlDocument::parse(*bytes, &error, rotationReading);
        if (!document) {
            m_file.markDamaged();
            const QString text =
                RotationStore::tr(
                    "\"%1\" could not be read: %2\n\nThe file stays as it is, and is kept as a copy when you save.")
                    .arg(QDir::toNativeSeparators(m_file.path()), error);
            const QString title = Kind::words().loadFailed;
            co_await m_alerts.run(title, text);
            co_return;
        }
        const QString version = document->lastText("//version");
        if (!version.isNull())
            m_version = version;
        m_rotations = RotationDocument<Kind>::rotationsIn(*document);
        m_keptRotations = m_rotations;
        m_hasWriteFailed = false; // what could not be written is no longer in the store
        openRotationNamed(currentRotation());
    }

private:
    /// Shared by both kinds: the message rotation's question has always carried this title.
    static QString saveQuestionTitle() { return RotationStore::tr("Unsaved Changes to Map Rotation"); }

    void store(const Rotation &rotation)
    {
        Dictionary changed = dictionary();
        changed.insert(rotation.name, rotation);
        m_rotations = changed;
    }

    static typename Rotation::Entries copiesOf(const typename Rotation::Entries &entries)
    {
        typename Rotation::Entries copies;
        copies.reserve(entries.size());
        for (const std::shared_ptr<Entry> &entry : entries)
            copies.append(std::make_shared<Entry>(*entry));
        return copies;
    }

    void noteChange()
    {
        m_isEdited = true;
        emit unsavedWorkTouched();
    }

    void noteOrder()
    {
        m_isReordered = true;
        emit unsavedWorkTouched();
    }

    /// The table holds what is stored under the name; nothing for a name that is not known.
    bool isTableSaved(const QString &name) const
    {
        Rotation table = dictionary().value(name);
        const Rotation stored = table;
        table.rotationList = entries();
        return table == stored;
    }

    bool hasTableChanged() const { return (m_isEdited || m_isReordered) && !isTableSaved(currentRotation()); }

    void takeTableAsSaved()
    {
        m_isEdited = false;
        m_isReordered = false;
        emit unsavedWorkTouched();
    }

    GuardedFile::Outcome writeFile()
    {
        GuardedFile::Outcome outcome;
        if (dictionary().isEmpty()) {
            outcome = m_file.remove();
        } else {
            const QByteArray bytes = RotationDocument<Kind>::checkedBytes(dictionary(), &outcome.error);
            if (outcome.isSuccess())
                outcome = m_file.write(bytes);
        }
        m_hasWriteFailed = !outcome.isSuccess();
        if (!m_hasWriteFailed)
            m_keptRotations = m_rotations;
        m_failedWrites += m_hasWriteFailed ? 1 : 0;
        emit unsavedWorkTouched();
        return outcome;
    }

    QCoro::Task<> tell(GuardedFile::Outcome outcome)
    {
        QString text;
        if (!outcome.isSuccess()) {
            text = RotationStore::tr(
                       "The rotations could not be written to \"%1\": %2\n\nThe file on disk is unchanged; the changes "
                       "are kept until the program ends.")
                       .arg(QDir::toNativeSeparators(m_file.path()), outcome.error);
        }
        if (!outcome.keptCopy.isEmpty()) {
            text += (text.isEmpty() ? QString() : QStringLiteral("\n\n")) +
                    RotationStore::tr("The former file was kept as \"%1\".")
                        .arg(QDir::toNativeSeparators(outcome.keptCopy));
        }
        if (text.isEmpty())
            co_return;
        const QString title = outcome.isSuccess() ? RotationStore::tr("Former File Kept") : Kind::words().saveFailed;
        co_await m_alerts.run(title, text);
    }

    /// What could not be written is not wanted any more: the next save, of whatever rotation, must not write it.
    void giveUpFailedWrites()
    {
        if (!std::exchange(m_hasWriteFailed, false))
            return;
        m_rotations = m_keptRotations;
        m_isEdited = true; // unless the table is what comes back
        setCurrentRotation(currentRotation());
        emit unsavedWorkTouched();
    }

    QCoro::Task<bool> saveTable()
    {
        if (!hasTableChanged()) { // the named rotations are what the file lacks
            const bool isSaved = co_await saveMessageRotation();
            co_return isSaved;
        }
        QString name = currentRotation();
        if (name.isEmpty() && m_saveAsPanel) {
            const int failedWrites = m_failedWrites;
            name = co_await m_saveAsPanel();
            if (m_hasWriteFailed && m_failedWrites != failedWrites) // the panel has tried it and told so
                co_return false;
        }
        if (name.isEmpty())
            co_return false;
        const bool isSaved = co_await saveUIChanges(name);
        co_return isSaved;
    }

    Preferences &m_preferences;
    Alerts &m_alerts;
    GuardedFile m_file;
    std::optional<Dictionary> m_rotations;
    std::optional<Dictionary> m_keptRotations; ///< without what could not be written
    QString m_version;
    RSRTVArrayController<Entry> m_table;
    bool m_isEdited = false; ///< since the table was opened or saved
    bool m_isReordered = false;
    bool m_hasWriteFailed = false;
    int m_failedWrites = 0;
};
