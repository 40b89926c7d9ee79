#include "RotationStore.h"

#include "Alerts.h"
#include "Preferences.h"
#include "RotationXml.h"

#include <QDir>

#include <optional>
#include <utility>

RotationStore::RotationStore(RotationKind kind, Preferences &preferences, Alerts &alerts, const QString &folder,
                             QObject *parent)
    : QObject(parent), m_kind(std::move(kind)), m_preferences(preferences), m_alerts(alerts),
      m_file(QDir(folder).filePath(m_kind.fileName), rotationReading.maximumSize)
{
}

void RotationStore::watch(const QAbstractItemModel &table)
{
    const auto touch = [this] {
        m_isTouched = true;
        emit unsavedWorkTouched();
    };
    connect(&table, &QAbstractItemModel::rowsInserted, this, touch);
    connect(&table, &QAbstractItemModel::rowsRemoved, this, touch);
    connect(&table, &QAbstractItemModel::dataChanged, this, touch);
    connect(&table, &QAbstractItemModel::layoutChanged, this, touch);
}

QString RotationStore::currentRotation() const
{
    return m_preferences.value(m_kind.currentRotationKey).toString();
}

void RotationStore::setCurrentRotation(const QString &name)
{
    const QString current = contains(name) ? name : QString();
    m_preferences.setValue(m_kind.currentRotationKey, current);
    emit currentRotationChanged(current);
}

void RotationStore::takeTableAsSaved()
{
    m_isTouched = false;
    emit unsavedWorkTouched();
}

QCoro::Task<> RotationStore::load()
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
            tr("\"%1\" could not be read: %2\n\nThe file stays as it is, and is kept as a copy when you save.")
                .arg(QDir::toNativeSeparators(m_file.path()), error);
        co_await m_alerts.run(m_kind.loadFailed, text);
        co_return;
    }
    takeDocument(*document);
    keepStored();
    m_hasWriteFailed = false; // what could not be written is no longer in the store
    openRotationNamed(currentRotation());
}

void RotationStore::openRotationNamed(const QString &name)
{
    if (!isTableStoredAs(name)) // else what is on air, or selected, stays so
        fillTable(name);
    setCurrentRotation(name);
    takeTableAsSaved();
    emit rotationOpened();
}

QCoro::Task<> RotationStore::newRotationNamed(QString name)
{
    if (contains(name)) {
        const QString text = m_kind.alreadyExists.arg(name);
        co_await m_alerts.run(m_kind.creationRefused, text);
        co_return;
    }
    storeEmpty(name);
    openRotationNamed(name);
}

QCoro::Task<> RotationStore::deleteRotationNamed(QString name)
{
    if (!contains(name)) {
        const QString text = m_kind.doesNotExist.arg(name);
        co_await m_alerts.run(m_kind.deletionRefused, text);
        co_return;
    }
    removeStored(name);
    const GuardedFile::Outcome outcome = writeFile();
    openRotationNamed(currentRotation());
    co_await tell(outcome);
}

QCoro::Task<bool> RotationStore::saveMessageRotation()
{
    const GuardedFile::Outcome outcome = writeFile();
    co_await tell(outcome);
    co_return outcome.isSuccess();
}

QCoro::Task<bool> RotationStore::saveUIChanges(QString name)
{
    storeTable(name);
    const GuardedFile::Outcome outcome = writeFile();
    setCurrentRotation(name);
    takeTableAsSaved();
    if (outcome.isSuccess())
        emit rotationSaved(name);
    co_await tell(outcome);
    co_return outcome.isSuccess();
}

QCoro::Task<bool> RotationStore::saveUnsavedChanges()
{
    if (!hasUnsavedWork())
        co_return true;
    // The question about message rotations has always carried this title, too.
    const QString title = tr("Unsaved Changes to Map Rotation");
    const QStringList buttons{tr("Yes"), tr("No"), tr("Cancel")};
    const int pressed = co_await m_alerts.run(title, m_kind.saveQuestion, buttons);
    if (pressed == 1)
        giveUpFailedWrites();
    if (pressed != 0)
        co_return pressed == 1;
    const bool isSaved = co_await saveWork();
    co_return isSaved;
}

QCoro::Task<bool> RotationStore::saveWork()
{
    bool isSaved = false;
    const QString name = currentRotation();
    if (!hasTableChanged()) { // the named rotations are what the file lacks
        isSaved = co_await saveMessageRotation();
    } else if (!name.isEmpty()) {
        isSaved = co_await saveUIChanges(name);
    } else if (m_saveAsPanel) {
        co_await m_saveAsPanel();
        isSaved = !hasUnsavedWork();
    }
    co_return isSaved;
}

void RotationStore::giveUpFailedWrites()
{
    if (!std::exchange(m_hasWriteFailed, false))
        return;
    // The next save, of whatever rotation, must not write what is not wanted any more.
    returnToKept();
    m_isTouched = true; // unless the table is what comes back
    setCurrentRotation(currentRotation());
    emit unsavedWorkTouched();
}

GuardedFile::Outcome RotationStore::writeFile()
{
    GuardedFile::Outcome outcome;
    if (names().isEmpty()) {
        outcome = m_file.remove();
    } else {
        const QByteArray bytes = fileContent(&outcome.error);
        if (outcome.isSuccess())
            outcome = m_file.write(bytes);
    }
    m_hasWriteFailed = !outcome.isSuccess();
    if (!m_hasWriteFailed)
        keepStored();
    emit unsavedWorkTouched();
    return outcome;
}

QCoro::Task<> RotationStore::tell(GuardedFile::Outcome outcome)
{
    const bool isWritten = outcome.isSuccess();
    QStringList paragraphs;
    if (!isWritten) {
        const QString text = tr("The rotations could not be written to \"%1\": %2\n\nThe file on disk is unchanged; "
                                "the changes are kept until the program ends.");
        paragraphs.append(text.arg(QDir::toNativeSeparators(m_file.path()), outcome.error));
    }
    if (!outcome.keptCopy.isEmpty())
        paragraphs.append(tr("The former file was kept as \"%1\".").arg(QDir::toNativeSeparators(outcome.keptCopy)));
    if (paragraphs.isEmpty())
        co_return;
    const QString title = isWritten ? tr("Former File Kept") : m_kind.saveFailed;
    const QString text = paragraphs.join(QStringLiteral("\n\n"));
    co_await m_alerts.run(title, text);
}

QCoro::Task<> RotationStore::tellOfTooMany()
{
    const QString text = tr("A rotation can have %1 entries. Nothing was added.").arg(MaximumRows);
    co_await m_alerts.run(tr("Too Many Entries"), text);
}
