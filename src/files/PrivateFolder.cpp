#include "PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

bool makePrivateFolder(const QString &path)
{
    constexpr QFileDevice::Permissions ownerOnly =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    constexpr QFileDevice::Permissions others = QFileDevice::Permissions(0x0077);
    const QFileInfo folder(path);
    if (!folder.exists())
        return QDir().mkpath(folder.absolutePath()) &&
               (QDir().mkdir(path, ownerOnly) || QFileInfo(path).isDir()); // another thread may have been first
    // What somebody else owns cannot be narrowed, but can still be of use.
    if ((folder.permissions() & others) != 0)
        static_cast<void>(QFile::setPermissions(path, ownerOnly));
    return folder.isDir();
}
