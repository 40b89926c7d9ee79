#include "ConfigurationText.h"
#include "PlayerListFile.h"
#include "RotationFixture.h"
#include "SavedServers.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

/// Which call of the C library goes wrong for files below which folder.
static struct {
    QByteArray folder;
    QByteArray call;
    int errorNumber; ///< 0: it only takes its time
    int writes;
} fault;

/// @return whether the call fails, errno set then.
static bool fails(const char *call, const char *path)
{
    if (fault.call != call || !QByteArrayView(path).startsWith(fault.folder))
        return false;
    ::usleep(fault.errorNumber == 0 ? 300'000 : 0);
    errno = fault.errorNumber;
    return errno != 0;
}
static bool fails(const char *call, int file)
{
    char path[4096] = {};
    const QByteArray link = "/proc/self/fd/" + QByteArray::number(file);
    return !fault.call.isEmpty() && ::readlink(link, path, sizeof path - 1) > 0 && fails(call, path);
}

// These stand before those of the C library, for Qt as well.
extern "C" {
int open64(const char *path, int flags, ...)
{
    const bool isFailure = ((flags & O_ACCMODE) != O_RDONLY && fails("create", path)) || fails("open", path);
    return isFailure ? -1 : static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, 0600));
}
ssize_t write(int file, const void *bytes, size_t count)
{
    if (!fails("write", file))
        return ::syscall(SYS_write, file, bytes, count);
    // The last free block takes a part, and the next write tells that the disk is full.
    return fault.writes++ == 0 ? ::syscall(SYS_write, file, bytes, count / 2) : -1;
}
int fsync(int file)
{
    return fails("fsync", file) ? -1 : static_cast<int>(::syscall(SYS_fsync, file));
}
int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags)
{
    return fails("rename", to) ? -1 : static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}
int rename(const char *from, const char *to)
{
    return fails("rename", to) ? -1 : static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
}

/// Everything that is kept in files.
struct Desk : RotationFixture {
    ~Desk() { fault = {}; }
    /// Changes what `file` holds and saves it. @return what the user is told.
    QString save(const QString &file, const QString &text)
    {
        QString error;
        const QString place = folder.filePath(file);
        const qsizetype told = alerts.shown().size();
        if (file.endsWith("maprotate")) {
            awaited(maps.addToRotation(text, "g"));
            const bool isSaved = awaited(maps.saveUIChanges("n"));
            const bool mayClose = awaited(maps.saveUnsavedChanges()); // asks, is told to save, and tries it again
            isKept = isSaved == mayClose && isSaved != maps.hasUnsavedWork();
        } else if (file.endsWith("plist")) {
            error = servers.save({text, "192.0.2.1", "1", "p"}).error;
            isKept = servers.servers().last().label == text;
        } else if (file.endsWith("txt")) {
            PlayerRow player;
            player.name = text;
            static_cast<void>(savePlayerList({player}, place, &error));
        } else if (file.endsWith("cfg")) {
            const QHash<QString, QString> dvars{{"playlist_excludeMap", text}};
            static_cast<void>(saveConfiguration({{}, {}, dvars}, place, &error));
        } else {
            Preferences written(place);
            written.setValue("key", text);
            isKept = written.value("key") == text;
        }
        return error + alerts.texts().mid(told).join(u' ');
    }
    QByteArray content(const QString &file) const { return bytes(folder.filePath(file)); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    SavedServers servers{folder.filePath("SavedServers.plist"), "tester"};
    bool isKept = true; ///< in the program, and counted as unsaved where something counts that
};

class DiskFaults : public QObject
{
    Q_OBJECT
private slots:
    void leaveTheOldFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("call");
        QTest::addColumn<int>("errorNumber");
        for (const char *file :
             {"FerrowRcon.exe.maprotate", "SavedServers.plist", "players.txt", "server.cfg", "settings.ini"}) {
            for (const auto &[name, call, errorNumber] : {std::tuple("full", "write", ENOSPC),
                                                          {"broken", "write", EIO},
                                                          {"read-only", "create", EROFS},
                                                          {"permission lost", "open", EACCES},
                                                          {"permission lost while writing", "rename", EACCES},
                                                          {"folder vanishes while writing", "rename", ENOENT},
                                                          {"full, told late", "fsync", EDQUOT},
                                                          {"broken, told late", "fsync", EIO}}) {
                // Qt writes the settings, and does not ask whether they have reached the disk.
                if (strcmp(call, "fsync") != 0 || strcmp(file, "settings.ini") != 0)
                    QTest::addRow("%s, %s", name, file) << QString(file) << QByteArray(call) << errorNumber;
            }
        }
    }
    void leaveTheOldFile()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, call);
        QFETCH(int, errorNumber);
        Desk desk;
        QCOMPARE(desk.save(file, "first"), QString());
        const QByteArray before = desk.content(file);
        const QStringList files = desk.files();
        fault = {desk.folder.path().toLocal8Bit(), call, errorNumber, 0};
        const QString told = desk.save(file, "second");
        fault = {};
        QVERIFY(desk.isKept);
        QVERIFY2(told.contains(file == "settings.ini" ? "" : strerror(errorNumber)), qPrintable(told));
        QCOMPARE(desk.content(file), before);
        QCOMPARE(desk.files(), files); // and nothing half done beside it
        QCOMPARE(desk.save(file, "third"), QString());
        QVERIFY(desk.isKept && desk.content(file) != before);
    }

    void vanishedFolder()
    {
        Desk desk;
        QVERIFY(QDir(desk.folder.path()).removeRecursively());
        QCOMPARE(desk.save("players.txt", "a"), "No such file or directory");
        QCOMPARE(desk.save("FerrowRcon.exe.maprotate", "a"), QString()); // it is made again
        QVERIFY(desk.content("FerrowRcon.exe.maprotate").contains("<map>a</map>"));
    }

    void slow()
    {
        Desk desk;
        fault = {desk.folder.path().toLocal8Bit(), "fsync", 0, 0};
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(desk.save("FerrowRcon.exe.maprotate", "a"), QString());
        QVERIFY(timer.elapsed() >= 300); // the window waits for as long
        QVERIFY(desk.content("FerrowRcon.exe.maprotate").contains("<map>a</map>"));
    }
};

QTEST_GUILESS_MAIN(DiskFaults)
#include "tst_diskfaults.moc"
