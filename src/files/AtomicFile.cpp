#include "AtomicFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

static constexpr QLatin1String unfinishedEnding(".ferrow-part");

static bool fail(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
    return false;
}

/// Beside `path`, since only within a folder one file takes the place of another in one step.
static QString passingName(const QString &path)
{
    constexpr quint32 names = 36U * 36 * 36 * 36 * 36 * 36;
    const QString letters = QString::number(QRandomGenerator::system()->bounded(names), 36);
    return path + u'.' + letters.rightJustified(6, u'0') + unfinishedEnding;
}

/// Where a link leads to, also when nothing is there yet.
static QString targetOf(const QString &path)
{
    constexpr int mostLinks = 128;
    QFileInfo found(path);
    for (int links = 0; links < mostLinks && found.isSymLink(); ++links)
        found.setFile(found.symLinkTarget());
    return found.filePath();
}

/// A group's rights are meant for that group, but a new file belongs to the group of the one who writes it.
static bool takeRightsOf(const struct stat &former, const QFile &file)
{
    mode_t rights = former.st_mode & 0777U;
    if (::fchown(file.handle(), static_cast<uid_t>(-1), former.st_gid) != 0)
        rights &= 0707U | (rights & 07U) << 3;
    return ::fchmod(file.handle(), rights) == 0;
}

/// The file must not be there yet.
static bool open(QFile &file, const QString &formerPath, QFileDevice::Permissions permissions)
{
    // A buffer would forget the reason of a failure that it meets when it is emptied.
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered;
    struct stat former {
    };
    const bool hasFormer = ::stat(QFile::encodeName(formerPath).constData(), &former) == 0;
    if (!hasFormer && !permissions)
        return file.open(mode);
    if (!file.open(mode, AtomicFile::ownerOnly))
        return false;
    return permissions ? file.setPermissions(permissions) : takeRightsOf(former, file);
}

/// A full disk takes a part first and tells its reason only when it is asked for more.
static bool writeAll(QFile &file, const QByteArray &content)
{
    qint64 done = 0;
    while (done < content.size()) {
        const qint64 written = file.write(content.constData() + done, content.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

/// A network's disk, or one with quotas, may tell only here that it is full or broken, and closing does not ask.
static bool hasReachedDisk(const QFile &file)
{
    return ::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP; // some file systems have no such thing
}

static bool rename(const QFile &file, const QString &target)
{
    return std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(target).constData()) == 0;
}

bool AtomicFile::write(const QString &path, const QByteArray &content, QString *error,
                       QFileDevice::Permissions permissions)
{
    const QFileInfo former(path);
    if (former.isDir())
        return fail(error, tr("There is a folder in its place"));
    if (former.exists() && !former.isFile()) // a device would be gone for good
        return fail(error, tr("There is something in its place that is no file"));
    if (former.exists() && !former.isWritable())
        return fail(error, tr("The file may not be written"));

    const QString target = targetOf(path);
    QFile file(passingName(target));
    if (open(file, path, permissions) && writeAll(file, content) && hasReachedDisk(file) && rename(file, target))
        return true;
    const int errorNumber = errno;
    const bool isToldByFile = file.error() != QFileDevice::NoError;
    const QString reason = isToldByFile ? file.errorString() : qt_error_string(errorNumber);
    if (file.isOpen()) // else nothing of it is ours
        static_cast<void>(file.remove());
    return fail(error, reason);
}

bool AtomicFile::copy(const QString &source, const QString &target, QString *error)
{
    QFile file(source);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.error() != QFileDevice::NoError)
        return fail(error, file.errorString());
    if (!write(target, content, error, ownerOnly))
        return false;

    const QDateTime modified = QFileInfo(source).lastModified();
    QFile copied(target);
    bool isTimeSet = copied.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
                     copied.setFileTime(modified, QFileDevice::FileModificationTime);
    // Some file systems count in steps of two seconds and round down.
    if (isTimeSet && QFileInfo(target).lastModified() < modified)
        isTimeSet = copied.setFileTime(modified.addSecs(2), QFileDevice::FileModificationTime);
    return isTimeSet || fail(error, copied.errorString());
}

void AtomicFile::removeUnfinished(const QString &path)
{
    const QFileInfo file(targetOf(path));
    const QRegularExpression ours(QRegularExpression::anchoredPattern(QRegularExpression::escape(file.fileName()) +
                                                                      QStringLiteral("\\.[a-z0-9]{6}") +
                                                                      QRegularExpression::escape(unfinishedEnding)));
    const QDateTime newest = QDateTime::currentDateTime().addSecs(-60);
    const QFileInfoList found = file.absoluteDir().entryInfoList({QLatin1Char('*') + unfinishedEnding},
                                                                 QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &each : found) {
        if (each.lastModified() < newest && ours.match(each.fileName()).hasMatch())
            static_cast<void>(QFile::remove(each.filePath()));
    }
}

bool AtomicFile::makePrivateFolder(const QString &path)
{
    constexpr QFileDevice::Permissions allOfOwner = ownerOnly | QFileDevice::ExeOwner;
    constexpr QFileDevice::Permissions others = QFileDevice::Permissions(0x0077);
    const QFileInfo folder(path);
    if (!folder.exists())
        return QDir().mkpath(folder.absolutePath()) &&
               (QDir().mkdir(path, allOfOwner) || QFileInfo(path).isDir()); // another thread may have been first
    // What somebody else owns cannot be narrowed, but can still be of use.
    if ((folder.permissions() & others) != 0)
        static_cast<void>(QFile::setPermissions(path, allOfOwner));
    return folder.isDir();
}
