#include "AtomicFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

static void report(QString *error, const QString &reason)
{
    if (error)
        *error = reason;
}

/// A full disk takes a part first and tells its reason only when it is asked for more.
static bool writeAll(QSaveFile &file, const QByteArray &content)
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

/// A network's disk, or one with quotas, may tell only here that it is full or broken, and QSaveFile does not listen.
static bool hasReachedDisk(const QSaveFile &file)
{
    return ::fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOTSUP; // some file systems have no such thing
}

/// The rights of a group are meant for that group: a new file belongs to the group of the one who writes it. Where it
/// may not be given to the group of the file before it, the group gets no more than everybody.
static bool keepGroup(QSaveFile &file, const QString &path)
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
    QSaveFile file(path);
    // A buffer would forget the reason of a failure that it meets when it is emptied.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        report(error, file.errorString());
        return false;
    }
    const bool isGuarded = permissions ? file.setPermissions(permissions) : keepGroup(file, path);
    bool isWritten = isGuarded && writeAll(file, content);
    if (isWritten && modified.isValid()) {
        // The time is set last, on the new file while it still has its passing name: a later write would change it.
        isWritten = file.setPermissions(file.permissions() | QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                    file.setFileTime(modified, QFileDevice::FileModificationTime);
    }
    if (!isWritten) {
        report(error, file.errorString());
        file.cancelWriting();
        return false;
    }
    if (!hasReachedDisk(file)) {
        report(error, qt_error_string(errno));
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        report(error, file.errorString());
        return false;
    }
    return true;
}
