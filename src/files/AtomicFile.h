#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QFileDevice>
#include <QString>

/// Files that are replaced as a whole: whoever looks finds the old content or the new one, never a part, and a failure
/// leaves the old one in place. Until it is whole, the new one is called "NAME.xxxxxx.ferrow-part", with six small
/// letters or digits. Any thread.
class AtomicFile
{
    Q_DECLARE_TR_FUNCTIONS(AtomicFile)
public:
    static constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

    AtomicFile() = delete;

    /// Makes `content` the content of `path`. A link is followed. The rights of a file that was there are kept, and its
    /// group; where that is not ours to give, the group's rights shrink to everybody's.
    /// @param error        the reason in the user's language when it fails; may be null.
    /// @param permissions  of the new file, before anything is in it, if there are any.
    [[nodiscard]] static bool write(const QString &path, const QByteArray &content, QString *error = nullptr,
                                    QFileDevice::Permissions permissions = {});

    /// Makes `target` a copy of `source` that its owner alone may read and write, whatever the rights of `source`.
    /// The copy has the modification time of `source`, or a slightly later one where the file system is too coarse for
    /// it: it never looks older.
    [[nodiscard]] static bool copy(const QString &source, const QString &target, QString *error = nullptr);

    /// Removes what a killed program has left of its writing of `path`: files with exactly such a name that are older
    /// than a minute. Younger ones may be another program's, which is still at it.
    static void removeUnfinished(const QString &path);

    /// Makes the folder `path` and what is missing above it. The folder is for its owner only from the first moment,
    /// and becomes so where it was there with wider rights.
    /// @return whether there is such a folder now.
    [[nodiscard]] static bool makePrivateFolder(const QString &path);
};
