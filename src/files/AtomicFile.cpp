#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <optional>

static void report(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
}

static QString unfinishedEnding()
{
    return QStringLiteral(".ferrow-part");
}

static constexpr QLatin1String passingLetters("abcdefghijklmnopqrstuvwxyz0123456789");
static constexpr int passingLength = 6;

/// Beside `path`, since only within a folder one file takes the place of another in one step.
static QString unusedNameBeside(const QString &path)
{
    for (;;) {
        QString name = path + QLatin1Char('.');
        for (int i = 0; i < passingLength; ++i)
            name += passingLetters.at(QRandomGenerator::system()->bounded(static_cast<int>(passingLetters.size())));
        name += unfinishedEnding();
        const QFileInfo found(name);
        if (!found.exists() && !found.isSymLink())
            return name;
    }
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

/// The rights of a group are meant for that group: a new file belongs to the group of the one who writes it. Where it
/// may not be given to the group of the file before it, the group gets no more than everybody.
static bool keepGroup(QFile &file, const QString &path)
{
    struct stat before {
    };
    struct stat now {
    };
    if (::stat(QFile::encodeName(path).constData(), &before) != 0 || ::fstat(file.handle(), &now) != 0 ||
        before.st_gid == now.st_gid)
        return true; // or there was none
    if (::fchown(file.handle(), static_cast<uid_t>(-1), before.st_gid) == 0)
        return true;
    QFileDevice::Permissions rights = file.permissions();
    const auto drop = [&rights](QFileDevice::Permission ofGroup, QFileDevice::Permission ofOthers) {
        if (!rights.testFlag(ofOthers))
            rights.setFlag(ofGroup, false);
    };
    drop(QFileDevice::ReadGroup, QFileDevice::ReadOther);
    drop(QFileDevice::WriteGroup, QFileDevice::WriteOther);
    drop(QFileDevice::ExeGroup, QFileDevice::ExeOther);
    return file.setPermissions(rights);
}

bool AtomicFile::write(const QString &path, const QByteArray &content, QString *error,
                       QFileDevice::Permissions permissions)
{
    return replace(path, content, QDateTime(), permissions, error);
}

bool AtomicFile::copy(const QString &source, const QString &target, QString *error)
{
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly)) {
        report(error, file.errorString());
        return false;
    }
    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        report(error, file.errorString());
        return false;
    }
    const QDateTime modified = QFileInfo(source).lastModified();
    if (!replace(target, content, modified, ownerOnly, error))
        return false;
    if (QFileInfo(target).lastModified() >= modified)
        return true;

    // Some file systems count in steps of two seconds and round down.
    QFile copied(target);
    const bool isOpen = copied.open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
    if (isOpen && copied.setFileTime(modified.addSecs(2), QFileDevice::FileModificationTime))
        return true;
    report(error, copied.errorString());
    return false;
}

bool AtomicFile::replace(const QString &path, const QByteArray &content, const QDateTime &modified,
                         QFileDevice::Permissions permissions, QString *error)
{
    if (QFileInfo(path).isDir()) {
        report(error, tr("There is a folder in its place"));
        return false;
    }
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) { // a device would be gone for good
        report(error, tr("There is something in its place that is no file"));
        return false;
    }
    const QFileInfo former(path);
    if (former.exists() && !former.isWritable()) {
        report(error, tr("The file may not be written"));
        return false;
    }
    const QString target = targetOf(path);
    QFile file(unusedNameBeside(target));
    if (!open(file, permissions, former, error) || !fill(file, content, modified, error)) {
        if (file.isOpen()) // else nothing of it is ours
            static_cast<void>(file.remove());
        return false;
    }
    file.close();
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(target).constData()) != 0) {
        report(error, qt_error_string(errno));
        static_cast<void>(file.remove());
        return false;
    }
    return true;
}

bool AtomicFile::open(QFile &file, QFileDevice::Permissions permissions, const QFileInfo &former, QString *error)
{
    std::optional<QFileDevice::Permissions> rights;
    if (permissions)
        rights = permissions;
    else if (former.exists())
        rights = former.permissions();
    // A buffer would forget the reason of a failure that it meets when it is emptied.
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered;
    const bool isOpen = rights ? file.open(mode, ownerOnly) && file.setPermissions(*rights) : file.open(mode);
    if (isOpen && (permissions || keepGroup(file, former.filePath())))
        return true;
    report(error, file.errorString());
    return false;
}

bool AtomicFile::fill(QFile &file, const QByteArray &content, const QDateTime &modified, QString *error)
{
    bool isWritten = writeAll(file, content);
    if (isWritten && modified.isValid()) {
        // The time is set last, on the new file while it still has its passing name: a later write would change it.
        isWritten = file.setPermissions(file.permissions() | QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                    file.setFileTime(modified, QFileDevice::FileModificationTime);
    }
    if (!isWritten) {
        report(error, file.errorString());
        return false;
    }
    if (!hasReachedDisk(file)) {
        report(error, qt_error_string(errno));
        return false;
    }
    return true;
}

void AtomicFile::removeUnfinished(const QString &path)
{
    const QFileInfo file(targetOf(path));
    const QDir folder = file.absoluteDir();
    const QRegularExpression ours(QRegularExpression::anchoredPattern(QRegularExpression::escape(file.fileName()) +
                                                                      QStringLiteral("\\.[a-z0-9]{6}") +
                                                                      QRegularExpression::escape(unfinishedEnding())));
    const QDateTime newest = QDateTime::currentDateTime().addSecs(-60);
    const QFileInfoList found =
        folder.entryInfoList({QLatin1Char('*') + unfinishedEnding()}, QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &each : found) {
        if (each.lastModified() < newest && ours.match(each.fileName()).hasMatch())
            static_cast<void>(QFile::remove(each.filePath()));
    }
}
