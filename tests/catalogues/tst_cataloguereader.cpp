#include "CatalogueFixture.h"
#include "DataColumns.h"
#include "FileSizeLimit.h"

#include <QDir>
#include <QFileInfo>

#include <optional>

#include <sys/stat.h>

static const int NoFile = -1;

static QByteArray catalogue(const QByteArray &version, const QByteArray &mark)
{
    return "<c><version>" + version + "</version><mark>" + mark + "</mark></c>";
}

/// The reader of one catalogue in folders of the test's own.
struct Reader : ScriptedFolders {
    explicit Reader(CatalogueReader::Kind readKind = CatalogueReader::Kind::Gametypes) : kind(readKind) {}
    CatalogueReader::Result read() const { return reader.refreshAndRead(kind); }

    CatalogueReader::Kind kind;
    RecordedAlerts alerts;
    CatalogueReader reader{folders(), alerts, nullptr};
    QString copy = reader.path(kind);
    QString shipped = reader.shippedPath(kind);
};

using Result = CatalogueReader::Result;

class CatalogueReaderTest : public QObject
{
    Q_OBJECT
private slots:
    void refreshes_data()
    {
        const auto row = dataColumns<bool, int, int, bool, QByteArray, QString>(
            "isMaps", "shippedAge", "userAge", "isReadOnly", "userContent", "expected");
        // shippedAge: seconds
        // expected: whose content is read: shipped, user, missing or damaged
        const QByteArray old = catalogue("3.9", "user");
        const QByteArray current = catalogue("4.0", "user");
        row("neither", false, NoFile, NoFile, false, old, "missing");
        row("only shipped", false, 50, NoFile, false, old, "shipped");
        row("newer shipped", false, 50, 60, false, old, "shipped");
        row("newer shipped, read-only copy", false, 50, 60, true, old, "user");

        row("maps: edited", true, 60, 50, false, current, "user");
        row("maps: other version", true, 60, 50, false, old, "shipped");
        row("maps: a slip is not thrown away", true, 60, 50, false, QByteArray("<c><mark>"), "damaged");
    }
    void refreshes()
    {
        QFETCH(bool, isMaps);
        QFETCH(int, shippedAge);
        QFETCH(int, userAge);
        QFETCH(bool, isReadOnly);
        QFETCH(QByteArray, userContent);
        QFETCH(QString, expected);
        const Reader files(isMaps ? CatalogueReader::Kind::Maps : CatalogueReader::Kind::Gametypes);
        if (shippedAge != NoFile)
            QVERIFY(Reader::write(files.shipped, catalogue("4.0", "shipped"), shippedAge));
        if (userAge != NoFile)
            QVERIFY(Reader::write(files.copy, userContent, userAge));
        if (isReadOnly)
            QVERIFY(QFile::setPermissions(files.copy, QFileDevice::ReadOwner));

        const Result result = files.read();
        if (!result.document) {
            QCOMPARE(result.state == CatalogueState::Missing ? "missing" : "damaged", expected);
            QCOMPARE(Reader::bytes(files.copy), expected == "damaged" ? userContent : QByteArray("<no file>"));
            return;
        }
        QCOMPARE(result.state, CatalogueState::Ready);
        QCOMPARE(result.document->lastText("//mark"), expected);
        QCOMPARE(Reader::bytes(files.copy), expected == "user" ? userContent : catalogue("4.0", "shipped"));

        // The next start changes nothing: what was copied does not look old, and an edit of it stays.
        QVERIFY(QFile::setPermissions(files.copy, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        QVERIFY(Reader::write(files.copy, catalogue("4.0", "edited")));
        QCOMPARE(files.read().document->lastText("//mark"), QString("edited"));
    }

    void copyIsTheUsersOwn()
    {
        const Reader files;
        QVERIFY(Reader::write(files.shipped, catalogue("1.0", "first"), 1'000'000));
        QVERIFY(QFile::setPermissions(files.shipped, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
        QVERIFY(QDir(files.folders().applicationSupport).removeRecursively()); // it is made anew
        QCOMPARE(files.read().state, CatalogueState::Ready);
        const QFileInfo made(files.copy);
        QVERIFY(made.permissions() & QFileDevice::WriteOwner);
        // As old as what it was made from: not older, or it would be replaced again and again, and not newer, or a file
        // that a later program ships would be taken for the older one.
        QCOMPARE(made.lastModified(), QFileInfo(files.shipped).lastModified());
    }

    void diskIsFull()
    {
        const Reader files;
        QVERIFY(Reader::write(files.shipped, "<c>" + QByteArray(200'000, 'x') + "</c>", 50));
        std::optional<FileSizeLimit> limit(10'000);
        const Result first = files.read();
        const bool isUsers = Reader::write(files.copy, catalogue("1.0", "user"), 60);
        const Result second = files.read();
        limit.reset();

        QCOMPARE(first.state, CatalogueState::Damaged);
        QVERIFY2(first.error.contains("File too large"), qPrintable(first.error)); // why there is nothing to read
        QVERIFY(isUsers);
        QCOMPARE(second.state, CatalogueState::Ready);
        QCOMPARE(second.document->lastText("//mark"), QString("user"));
        QCOMPARE(QDir(files.folders().applicationSupport).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void hostileFiles_data()
    {
        const auto row = dataColumns<QByteArray, QString>("content", "reason");
        QByteArray bomb = "<!DOCTYPE c [<!ENTITY a \"aaaaaaaaaa\">";
        for (char c = 'b'; c < 'k'; ++c) {
            const QByteArray reference = QByteArray("&") + char(c - 1) + ';';
            bomb += QByteArray("<!ENTITY ") + c + " \"" + reference.repeated(10) + "\">";
        }
        row("truncated", QByteArray("<c>\n<Gametype>\n<name>Tea"), "Line 3");
        row("nested 100,000 deep", QByteArray("<d>").repeated(100'000) + QByteArray("</d>").repeated(100'000),
            "nested more than");
        row("too many elements", "<c>" + QByteArray("<e/>").repeated(100'001) + "</c>", "100000 elements");
        row("too large", "<c>" + QByteArray(9 * 1024 * 1024, ' ') + "</c>", "larger than 8 MB");
        row("entity bomb", bomb + "]><c><mark>&j;</mark></c>", QString());
        row("external entity",
            QByteArray("<!DOCTYPE c [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><c><mark>&x;</mark></c>"), QString());
    }
    void hostileFiles()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const Reader files;
        QVERIFY(Reader::write(files.copy, content));
        const Result result = files.read();
        QCOMPARE(Reader::bytes(files.copy), content);
        if (reason.isNull()) {
            QCOMPARE(result.state, CatalogueState::Ready);
            QVERIFY(result.document->lastText("//mark").size() < 10); // nothing was put in its place
            return;
        }
        QCOMPARE(result.state, CatalogueState::Damaged);
        QVERIFY2(result.error.contains(reason), qPrintable(result.error));
        QVERIFY(result.error.contains(files.copy));
    }

    void thingsThatAreNoFiles()
    {
        const Reader folder;
        QVERIFY(Reader::write(folder.shipped, catalogue("1.0", "shipped"), -50));
        QVERIFY(QDir().mkpath(folder.copy + "/inside"));
        QCOMPARE(folder.read().state, CatalogueState::Damaged);
        QVERIFY(QFileInfo::exists(folder.copy + "/inside")); // somebody's, so it is not removed
        const Reader pipe;
        QCOMPARE(mkfifo(QFile::encodeName(pipe.copy).constData(), 0600), 0);
        QCOMPARE(pipe.read().state, CatalogueState::Damaged); // does not wait for a writer
    }
};

QTEST_GUILESS_MAIN(CatalogueReaderTest)
#include "tst_cataloguereader.moc"
