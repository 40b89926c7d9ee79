#include "RotationFile.h"

#include "AtomicFile.h"
#include "RotationXml.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <utility>

static constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

static QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

RotationFile::RotationFile(QString path, QByteArray rootElement)
    : m_path(std::move(path)), m_rootElement(std::move(rootElement))
{
}

bool RotationFile::exists() const
{
    return QFileInfo::exists(m_path);
}

std::optional<XmlDocument> RotationFile::read(QString *error)
{
    m_knownDigest.clear();
    m_isDamaged = true;
    const std::optional<QByteArray> bytes = XmlDocument::bytesOf(m_path, rotationReading.maximumSize, error);
    if (!bytes)
        return std::nullopt;
    std::optional<XmlDocument> document = XmlDocument::parse(*bytes, error, rotationReading);
    if (document) {
        m_knownDigest = digestOf(*bytes);
        m_isDamaged = false;
    }
    return document;
}

RotationFile::Outcome RotationFile::write(const QByteArray &bytes)
{
    Outcome outcome;
    const QString folder = QFileInfo(m_path).absolutePath();
    const bool hasFolder = QFileInfo::exists(folder) ||
                           (QDir().mkpath(folder) && QFile::setPermissions(folder, ownerOnly | QFileDevice::ExeOwner));
    if (!hasFolder) {
        outcome.error = tr("The folder \"%1\" could not be made.").arg(QDir::toNativeSeparators(folder));
        return outcome;
    }
    if (!keepAside(&outcome) || !AtomicFile::write(m_path, bytes, &outcome.error))
        return outcome;
    outcome.error.clear();
    m_knownDigest = digestOf(bytes);
    m_isDamaged = false;
    return outcome;
}

RotationFile::Outcome RotationFile::remove()
{
    Outcome outcome;
    QFile file(m_path);
    if (!exists() || !keepAside(&outcome))
        return outcome;
    if (file.remove())
        m_isDamaged = false;
    else
        outcome.error = file.errorString();
    return outcome;
}

bool RotationFile::keepAside(Outcome *outcome)
{
    if (!QFileInfo(m_path).isFile()) // nothing to lose; what is in its place will not be replaced
        return true;
    QString reason;
    const std::optional<QByteArray> bytes = XmlDocument::bytesOf(m_path, rotationReading.maximumSize, &reason);
    if (bytes && !m_isDamaged && digestOf(*bytes) == m_knownDigest)
        return true;
    const QString name = m_path + (m_isDamaged ? QLatin1String(".damaged-") : QLatin1String(".changed-")) +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    outcome->keptCopy = name;
    for (int number = 2; QFileInfo::exists(outcome->keptCopy); ++number)
        outcome->keptCopy = name + QStringLiteral("-%1").arg(number);
    QFile file(m_path);
    if (file.copy(outcome->keptCopy) && QFile::setPermissions(outcome->keptCopy, ownerOnly)) {
        m_knownDigest = digestOf(bytes.value_or(QByteArray())); // one copy is enough if what follows fails
        m_isDamaged = !bytes;
        return true;
    }
    outcome->keptCopy.clear();
    outcome->error =
        tr("The former file could not be kept as a copy: %1.").arg(reason.isEmpty() ? file.errorString() : reason);
    return false;
}

void RotationFile::removeStaleTemporaries() const
{
    const QFileInfo file(m_path);
    const QDir folder = file.absoluteDir();
    const QStringList names =
        folder.entryList({file.fileName() + QStringLiteral(".??????")}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    const QDateTime newest = QDateTime::currentDateTime().addSecs(-60);
    for (const QString &name : names) {
        const QString path = folder.filePath(name);
        if (QFileInfo(path).lastModified() < newest && isOwnTemporary(path))
            QFile::remove(path);
    }
}

/// Passing names end in six letters by chance. One that could be a word, such as "backup", may be a copy that the user
/// has made, and is left alone.
bool RotationFile::isOwnTemporary(const QString &path) const
{
    static const QRegularExpression word(QStringLiteral("^(?:[a-z]+|[A-Z]+|[A-Z][a-z]+)$"));
    static const QRegularExpression letters(QStringLiteral("^[A-Za-z]{6}$"));
    const QString ending = QFileInfo(path).suffix();
    if (!letters.match(ending).hasMatch() || word.match(ending).hasMatch())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray start = '<' + m_rootElement;
    const QByteArray found = file.read(start.size());
    return start.startsWith(found);
}
