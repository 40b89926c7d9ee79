#include "GuardedFile.h"

#include "AtomicFile.h"

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

std::optional<QByteArray> GuardedFile::readBounded(const QString &path, qint64 largestSize, QString *error)
{
    const QFileInfo info(path);
    QString reason;
    if (info.exists() && !info.isFile()) { // opening a pipe would wait for its writer
        reason = tr("It is not a file.");
    } else {
        QFile file(path);
        QByteArray bytes;
        if (file.open(QIODevice::ReadOnly))
            bytes = file.read(largestSize + 1);
        if (file.error() != QFileDevice::NoError)
            reason = file.errorString();
        else if (bytes.size() > largestSize)
            reason = tr("It is larger than %1 MB.").arg(largestSize / (1024 * 1024));
        else
            return bytes;
    }
    if (error)
        *error = reason;
    return std::nullopt;
}

GuardedFile::GuardedFile(QString path, qint64 largestSize) : m_path(std::move(path)), m_largestSize(largestSize) {}

bool GuardedFile::exists() const
{
    return QFileInfo::exists(m_path);
}

std::optional<QByteArray> GuardedFile::read(QString *error)
{
    AtomicFile::removeUnfinished(m_path);
    std::optional<QByteArray> bytes = readBounded(m_path, m_largestSize, error);
    m_knownDigest = bytes ? digestOf(*bytes) : QByteArray();
    m_isDamaged = !bytes;
    return bytes;
}

GuardedFile::Outcome GuardedFile::write(const QByteArray &bytes)
{
    Outcome outcome;
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QFileInfo::exists(folder) && !AtomicFile::makePrivateFolder(folder)) {
        outcome.error = tr("The folder \"%1\" could not be made.").arg(QDir::toNativeSeparators(folder));
        return outcome;
    }
    if (keepAside(&outcome) && AtomicFile::write(m_path, bytes, &outcome.error, AtomicFile::ownerOnly)) {
        m_knownDigest = digestOf(bytes);
        m_isDamaged = false;
    }
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
    const std::optional<QByteArray> bytes = readBounded(m_path, m_largestSize, &reason);
    if (bytes && !m_isDamaged && digestOf(*bytes) == m_knownDigest)
        return true;
    const QString name = m_path + (m_isDamaged ? QLatin1String(".damaged-") : QLatin1String(".changed-")) +
                         QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QString copy = name;
    for (int number = 2; QFileInfo::exists(copy); ++number)
        copy = name + QStringLiteral("-%1").arg(number);
    QFile file(m_path);
    if (!file.copy(copy) || !QFile::setPermissions(copy, AtomicFile::ownerOnly)) {
        outcome->error =
            tr("The former file could not be kept as a copy: %1.").arg(reason.isEmpty() ? file.errorString() : reason);
        return false;
    }
    outcome->keptCopy = copy;
    m_knownDigest = digestOf(bytes.value_or(QByteArray())); // one copy is enough if what follows fails
    m_isDamaged = !bytes;
    return true;
}
