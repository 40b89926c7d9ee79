#include "AtomicFile.h"
#include "CatalogueFixture.h"
#include "WorkingCopy.h"
#include "XmlDocument.h"

#include <QDir>
#include <QFileInfo>
#include <QStringEncoder>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

class WorkingCopyTest : public QObject
{
    Q_OBJECT

private slots:
    void refreshes_data();
    void refreshes();
    void copyIsTheUsersOwn_data();
    void copyIsTheUsersOwn();
    void namesOfFiles();
    void diskIsFull();
    void noFolder();
    void hostileFiles_data();
    void hostileFiles();
    void thingsThatAreNoFiles();
    void readsOtherEncodings_data();
    void readsOtherEncodings();
    void writesWhole();
};

static const int NoFile = -1;

static QByteArray catalogue(const QByteArray &version, const QByteArray &mark)
{
    return "<c><version>" + version + "</version><mark>" + mark + "</mark></c>";
}

void WorkingCopyTest::refreshes_data()
{
    QTest::addColumn<bool>("isMaps");
    QTest::addColumn<int>("shippedAge"); // seconds
    QTest::addColumn<int>("userAge");
    QTest::addColumn<bool>("isReadOnly");
    QTest::addColumn<QByteArray>("userContent");
    QTest::addColumn<QString>("expected"); // whose content is read: shipped, user, missing or damaged
    const QByteArray old = catalogue("3.9", "user");
    const QByteArray current = catalogue("4.0", "user");
    QTest::newRow("neither") << false << NoFile << NoFile << false << old << "missing";
    QTest::newRow("only shipped") << false << 50 << NoFile << false << old << "shipped";
    QTest::newRow("only the copy") << false << NoFile << 50 << false << old << "user";
    QTest::newRow("newer shipped") << false << 50 << 60 << false << old << "shipped";
    QTest::newRow("equally old") << false << 50 << 50 << false << old << "user";
    QTest::newRow("older shipped") << false << 60 << 50 << false << old << "user";
    QTest::newRow("newer shipped, read-only copy") << false << 50 << 60 << true << old << "user";
    QTest::newRow("damaged copy") << false << 60 << 50 << false << QByteArray("<c><mark>") << "damaged";
    QTest::newRow("damaged copy, newer shipped") << false << 50 << 60 << false << QByteArray("<c>") << "shipped";
    QTest::newRow("damaged copy alone") << false << NoFile << 50 << false << QByteArray("<c>") << "damaged";

    QTest::newRow("maps: neither") << true << NoFile << NoFile << false << old << "missing";
    QTest::newRow("maps: edited") << true << 60 << 50 << false << current << "user";
    QTest::newRow("maps: newer shipped") << true << 50 << 60 << false << current << "shipped";
    QTest::newRow("maps: other version") << true << 60 << 50 << false << old << "shipped";
    QTest::newRow("maps: later version") << true << 60 << 50 << false << catalogue("4.1", "user") << "shipped";
    QTest::newRow("maps: no version") << true << 60 << 50 << false << QByteArray("<mark>user</mark>") << "shipped";
    QTest::newRow("maps: last version counts")
        << true << 60 << 50 << false << QByteArray("<c><version>4.0</version><mark>user</mark><version>3</version></c>")
        << "shipped";
    QTest::newRow("maps: other version, read-only") << true << 60 << 50 << true << old << "user";
    QTest::newRow("maps: other version alone") << true << NoFile << 50 << false << old << "user";
    QTest::newRow("maps: a slip is not thrown away")
        << true << 60 << 50 << false << QByteArray("<c><mark>") << "damaged";
}

void WorkingCopyTest::refreshes()
{
    QFETCH(bool, isMaps);
    QFETCH(int, shippedAge);
    QFETCH(int, userAge);
    QFETCH(bool, isReadOnly);
    QFETCH(QByteArray, userContent);
    QFETCH(QString, expected);
    const ScriptedFolders files;
    const WorkingCopy copy(files.folders(), isMaps ? WorkingCopy::maps() : WorkingCopy::gametypes());
    if (shippedAge != NoFile)
        QVERIFY(files.write(copy.defaultPath(), catalogue("4.0", "shipped"), shippedAge));
    if (userAge != NoFile)
        QVERIFY(files.write(copy.path(), userContent, userAge));
    if (shippedAge == userAge && userAge != NoFile) {
        QFile same(copy.path());
        QVERIFY(same.open(QIODevice::ReadWrite));
        QVERIFY(same.setFileTime(QFileInfo(copy.defaultPath()).lastModified(), QFileDevice::FileModificationTime));
    }
    if (isReadOnly)
        QVERIFY(QFile::setPermissions(copy.path(), QFileDevice::ReadOwner));

    const WorkingCopy::Result result = copy.refreshAndRead();
    if (!result.document) {
        QCOMPARE(result.state == CatalogueState::Missing ? "missing" : "damaged", expected);
        QCOMPARE(QFileInfo::exists(copy.path()), expected == "damaged");
        if (expected == "damaged")
            QCOMPARE(files.read(copy.path()), userContent);
        return;
    }
    QCOMPARE(result.state, CatalogueState::Ready);
    QCOMPARE(result.document->lastText("//mark"), expected);
    QCOMPARE(files.read(copy.path()), expected == "user" ? userContent : catalogue("4.0", "shipped"));

    // The next start changes nothing: what was copied does not look old, and an edit of it stays.
    const QByteArray edited = catalogue("4.0", "edited");
    QVERIFY(QFile::setPermissions(copy.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    QVERIFY(files.write(copy.path(), edited));
    QCOMPARE(copy.refreshAndRead().document->lastText("//mark"), QString("edited"));
}

void WorkingCopyTest::copyIsTheUsersOwn_data()
{
    QTest::addColumn<int>("age"); // seconds
    QTest::newRow("from long ago") << 1'000'000;
    QTest::newRow("from the future") << -100'000;
}

void WorkingCopyTest::copyIsTheUsersOwn()
{
    QFETCH(int, age);
    const ScriptedFolders files;
    const WorkingCopy copy(files.folders(), WorkingCopy::gametypes());
    QVERIFY(files.write(copy.defaultPath(), catalogue("1.0", "first"), age));
    QVERIFY(QFile::setPermissions(copy.defaultPath(), QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    QCOMPARE(copy.refreshAndRead().state, CatalogueState::Ready);
    const QFileInfo made(copy.path());
    QVERIFY(made.permissions() & QFileDevice::WriteOwner);
    // As old as what it was made from: not older, or it would be replaced again and again, and not newer, or a file
    // that a later program ships would be taken for the older one.
    QCOMPARE(made.lastModified(), QFileInfo(copy.defaultPath()).lastModified());
}

void WorkingCopyTest::namesOfFiles()
{
    const CatalogueFolders folders{"/res", "/sup"};
    const WorkingCopy ranked(folders, WorkingCopy::settings(true));
    QCOMPARE(ranked.path(), QString("/sup/FerrowRcon.exe.gameSettingsRanked"));
    QCOMPARE(ranked.defaultPath(), QString("/res/FerrowRcon.default.gameSettingsRanked"));
    const WorkingCopy unranked(folders, WorkingCopy::settings(false));
    QCOMPARE(unranked.path(), QString("/sup/FerrowRcon.exe.gameSettingsUnranked"));
    QCOMPARE(WorkingCopy(folders, WorkingCopy::maps()).path(), QString("/sup/FerrowRcon.exe.maps"));
    QCOMPARE(WorkingCopy(folders, WorkingCopy::gametypes()).path(), QString("/sup/FerrowRcon.exe.gametypes"));
}

/// Lets no file grow beyond `bytes` while it lives, as a full disk would.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        m_isSet = getrlimit(RLIMIT_FSIZE, &m_before) == 0;
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        m_isSet = m_isSet && setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit()
    {
        if (m_isSet)
            static_cast<void>(setrlimit(RLIMIT_FSIZE, &m_before));
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    bool isSet() const { return m_isSet; }

private:
    rlimit m_before{};
    bool m_isSet = false;
};

void WorkingCopyTest::diskIsFull()
{
    const ScriptedFolders files;
    const WorkingCopy copy(files.folders(), WorkingCopy::gametypes());
    QVERIFY(files.write(copy.defaultPath(), "<c>" + QByteArray(200'000, 'x') + "</c>", 50));
    WorkingCopy::Result first;
    WorkingCopy::Result second;
    {
        const FileSizeLimit limit(10'000);
        QVERIFY(limit.isSet());
        first = copy.refreshAndRead();
        QCOMPARE(QDir(files.folders().applicationSupport).entryList(QDir::Files | QDir::Hidden), QStringList());
        QVERIFY(files.write(copy.path(), catalogue("1.0", "user"), 60));
        second = copy.refreshAndRead();
    }
    QCOMPARE(first.state, CatalogueState::Damaged);
    QVERIFY2(first.error.contains("File too large"), qPrintable(first.error)); // why there is nothing to read
    QCOMPARE(second.state, CatalogueState::Ready);
    QCOMPARE(second.document->lastText("//mark"), QString("user"));
    QCOMPARE(QDir(files.folders().applicationSupport).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

void WorkingCopyTest::noFolder()
{
    const ScriptedFolders files;
    CatalogueFolders folders = files.folders();
    folders.applicationSupport += "/new/one";
    const WorkingCopy copy(folders, WorkingCopy::gametypes());
    QVERIFY(files.write(copy.defaultPath(), catalogue("1.0", "shipped")));
    QCOMPARE(copy.refreshAndRead().state, CatalogueState::Ready);

    folders.applicationSupport = copy.path() + "/below a file";
    const WorkingCopy::Result result = WorkingCopy(folders, WorkingCopy::gametypes()).refreshAndRead();
    QCOMPARE(result.state, CatalogueState::Damaged);
    QVERIFY2(result.error.contains("folder cannot be made"), qPrintable(result.error));
}

void WorkingCopyTest::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");
    QByteArray bomb = "<!DOCTYPE c [<!ENTITY a \"aaaaaaaaaa\">";
    for (char c = 'b'; c < 'k'; ++c) {
        const QByteArray reference = QByteArray("&") + char(c - 1) + ';';
        bomb += QByteArray("<!ENTITY ") + c + " \"" + reference.repeated(10) + "\">";
    }
    QTest::newRow("empty") << QByteArray() << "Line 1";
    QTest::newRow("blank") << QByteArray(" \n \n") << "No document element";
    QTest::newRow("not XML") << QByteArray("gravity = 800\n") << "No document element";
    QTest::newRow("truncated") << QByteArray("<c>\n<Gametype>\n<name>Tea") << "Line 3";
    QTest::newRow("wrong end tag") << QByteArray("<c>\n<a>\n\n</b></c>") << "Line 4";
    QTest::newRow("bytes") << QByteArray("\x00\x01\x7f\xff<\x00", 6).repeated(5000) << "Line";
    QTest::newRow("zeros after a crash") << "<c><Gametype>" + QByteArray(4096, '\0') << "Line";
    QTest::newRow("nested 100,000 deep") << QByteArray("<d>").repeated(100'000) + QByteArray("</d>").repeated(100'000)
                                         << "nested more than";
    QTest::newRow("nested and truncated") << QByteArray("<d>").repeated(1'000'000) << "Line";
    QTest::newRow("too many elements") << "<c>" + QByteArray("<e/>").repeated(100'001) + "</c>"
                                       << "100000 elements";
    QTest::newRow("too large") << "<c>" + QByteArray(9 * 1024 * 1024, ' ') + "</c>"
                               << "larger than 8 MiB";
    QTest::newRow("entity bomb, unclosed") << bomb << "Line";
    QTest::newRow("entity bomb") << bomb + "]><c><mark>&j;</mark></c>" << QString();
    QTest::newRow("external entity")
        << QByteArray("<!DOCTYPE c [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><c><mark>&x;</mark></c>") << QString();
    QTest::newRow("as deep as allowed") << QByteArray("<d>").repeated(16) + QByteArray("</d>").repeated(16)
                                        << QString();
}

void WorkingCopyTest::hostileFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const ScriptedFolders files;
    const WorkingCopy copy(files.folders(), WorkingCopy::gametypes());
    QVERIFY(files.write(copy.path(), content));
    const WorkingCopy::Result result = copy.refreshAndRead();
    QCOMPARE(files.read(copy.path()), content);
    if (reason.isNull()) {
        QCOMPARE(result.state, CatalogueState::Ready);
        QVERIFY(result.document->lastText("//mark").size() < 10); // nothing was put in its place
        return;
    }
    QCOMPARE(result.state, CatalogueState::Damaged);
    QVERIFY2(result.error.contains(reason), qPrintable(result.error));
    QVERIFY(result.error.contains(copy.path()));
}

void WorkingCopyTest::thingsThatAreNoFiles()
{
    const ScriptedFolders files;
    const WorkingCopy folder(files.folders(), WorkingCopy::gametypes());
    QVERIFY(files.write(folder.defaultPath(), catalogue("1.0", "shipped"), -50));
    QVERIFY(QDir().mkpath(folder.path() + "/inside"));
    QCOMPARE(folder.refreshAndRead().state, CatalogueState::Damaged);
    QVERIFY(QFileInfo::exists(folder.path() + "/inside")); // somebody's, so it is not removed

    const WorkingCopy pipe(files.folders(), WorkingCopy::settings(true));
    QCOMPARE(mkfifo(QFile::encodeName(pipe.path()).constData(), 0600), 0);
    QCOMPARE(pipe.refreshAndRead().state, CatalogueState::Damaged); // does not wait for a writer

#ifdef Q_OS_LINUX
    const WorkingCopy unreadable(files.folders(), WorkingCopy::maps());
    QVERIFY(QFile::link("/proc/self/mem", unreadable.path()));
    QCOMPARE(unreadable.refreshAndRead().state, CatalogueState::Damaged);
#endif
}

void WorkingCopyTest::readsOtherEncodings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const QString text = QString::fromUtf8("<mark>H\u00f6he</mark>");
    QTest::newRow("UTF-8 with a mark") << QByteArray("\xef\xbb\xbf") + text.toUtf8();
    QTest::newRow("Latin-1") << "<?xml version='1.0' encoding='ISO-8859-1'?>" + text.toLatin1();
    QStringEncoder utf16(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    const QByteArray encoded = utf16.encode(text);
    QTest::newRow("UTF-16") << encoded;
}

void WorkingCopyTest::readsOtherEncodings()
{
    QFETCH(QByteArray, bytes);
    const auto document = XmlDocument::parse(bytes);
    QVERIFY(document);
    QCOMPARE(document->lastText("//mark"), QString::fromUtf8("H\u00f6he"));
    QVERIFY(document->lastText("//none").isNull());
}

void WorkingCopyTest::writesWhole()
{
    const ScriptedFolders files;
    const QString path = files.user("txt");
    QVERIFY(AtomicFile::write(path, "first"));
    QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    QVERIFY(AtomicFile::write(path, "second"));
    QCOMPARE(files.read(path), QByteArray("second"));
    const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::ReadOther;
    QVERIFY((QFileInfo(path).permissions() & others) == 0);

    QString error;
    {
        const FileSizeLimit limit(10'000);
        QVERIFY(limit.isSet());
        QVERIFY(!AtomicFile::write(path, QByteArray(200'000, 'x'), &error));
    }
    QVERIFY(!error.isEmpty());
    QCOMPARE(files.read(path), QByteArray("second"));
    QVERIFY(!AtomicFile::copy(files.user("none"), path, &error));
    QCOMPARE(files.read(path), QByteArray("second"));
}

QTEST_GUILESS_MAIN(WorkingCopyTest)
#include "tst_workingcopy.moc"
