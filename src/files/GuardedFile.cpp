#include "GuardedFile.h"

#include "AtomicFile.h"
#include "BoundedFile.h"
#include "PrivateFolder.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

static QByteArray digestOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
}

GuardedFile::GuardedFile(QString path, qint64 largestSize) : m_path(std::move(path)), m_largestSize(largestSize) {}

bool GuardedFile::exists() const
{
    return QFileInfo::exists(m_path);
}

std::optional<QByteArray> GuardedFile::read(QString *error)
{
    AtomicFile::removeUnfinished(m_path);
    std::optional<QByteArray> bytes = BoundedFile::read(m_path, m_largestSize, error);
    m_knownDigest = bytes ? digestOf(*bytes) : QByteArray();
    m_isDamaged = !bytes;
    return bytes;
}

GuardedFile::Outcome GuardedFile::write(const QByteArray &bytes)
{
    Outcome outcome;
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QFileInfo::exists(folder) && !makePrivateFolder(folder)) {
        outcome.error = tr("The folder \"%1\" could not be made.").arg(QDir::toNativeSeparators(folder));
        return outcome;
    }
    if (!keepAside(&outcome) || !AtomicFile::write(m_path, bytes, &outcome.error, AtomicFile::ownerOnly))
        return outcome;
    outcome.error.clear();
    m_knownDigest = digestOf(bytes);
    m_isDamaged = false;
    return outcome;
}

GuardedFile::Outcome GuardedFile::remove()
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

bool GuardedFile::keepAside(Outcome *outcome)
{
    if (!QFileInfo(m_path).isFile()) // nothing to lose; what is in its place will not be replaced
        return true;
    QString reason;
    const std::optional<QByteArray> bytes = BoundedFile::read(m_path, m_largestSize, &reason);
    if (bytes && !m_isDamaged && digestOf(*bytes) == m_knownDigest)
        return true;
    const QString name = m_path + (m_isDamaged ? QLatin1String(".damaged-") : QLatin1String(".changed-")) +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    outcome->keptCopy = name;
    for (int number = 2; QFileInfo::exists(outcome->keptCopy); ++number)
        outcome->keptCopy = name + QStringLiteral("-%1").arg(number);
    QFile file(m_path);
    if (file.copy(outcome->keptCopy) && QFile::setPermissions(outcome->keptCopy, AtomicFile::ownerOnly)) {
        m_knownDigest = digestOf(bytes.value_or(QByteArray())); // one copy is enough if what follows fails
        m_isDamaged = !bytes;
        return true;
    }
    outcome->keptCopy.clear();
    outcome->error =
        tr("The former file could not be kept as a copy: %1.").arg(reason.isEmpty() ? file.errorString() : reason);
    return false;
}
