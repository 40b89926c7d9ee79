#include "DataColumns.h"
#include "RotationFixture.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTest>

class RotationFilesTest : public QObject
{
    Q_OBJECT
private slots:
    void textsSurviveOrAreRefused_data()
    {
        const auto row = dataColumns<QString, bool>("text", "isStorable");
        row("line breaks", "a\r\nb\rc\nd\t", true);
        row("markup", "<b a=\"1\">&amp; ']]> %1", true);
        row("byte-order marks", QString(2, QChar(0xfeff)), true);
        row("control character", "a\x1b", false);
        row("half a character", QString(QChar(0xd83d)), false);
        row("more than can be read again", QString(33 << 20, 'x'), false);
    }
    void textsSurviveOrAreRefused()
    {
        QFETCH(QString, text);
        QFETCH(bool, isStorable);
        RotationFixture f;
        QVERIFY(awaited(f.maps.saveUIChanges("old")));
        awaited(f.maps.addToRotation(text, text));
        QCOMPARE(awaited(f.maps.saveUIChanges(text.left(9) + "n")), isStorable);
        QCOMPARE(f.alerts.titles(), isStorable ? QStringList() : QStringList("Map Rotations Not Saved"));
        QCOMPARE(f.maps.hasUnsavedWork(), !isStorable);
        KelMapRotation again(f.preferences, f.alerts, f.folder.path());
        awaited(again.loadMapRotation());
        QCOMPARE(again.mapRotationList() == f.maps.mapRotationList(), isStorable);
        QVERIFY(again.contains("old"));
    }

    void writesTheFormOfOthers()
    {
        RotationFixture f;
        QVERIFY(awaited(f.messages.saveUIChanges("b")));
        awaited(f.messages.addMessageToCurrentRotation("hi", "7"));
        QVERIFY(awaited(f.messages.saveUIChanges("A")));
        QCOMPARE(f.bytes(f.folder.filePath("FerrowRcon.exe.msgrotate")),
                 "<KelMessageRotation xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                 "xmlns:xsd=\"http://www.w3.org/2001/XMLSchema\"><version>1.0</version><MessageRotation>"
                 "<name>A</name><Rotation><MessageRotationInst><message>hi</message><duration>7</duration>"
                 "</MessageRotationInst></Rotation></MessageRotation><MessageRotation><name>b</name>"
                 "<Rotation/></MessageRotation></KelMessageRotation>");
    }

    void readsTheFilesOfOthers()
    {
        RotationFixture f;
        f.put(f.path,
              "<?xml version=\"1.0\"?>\n<r><version>2</version><MapRotation/><MapRotation><name>n</name>"
              "</MapRotation><deep><MapRotation><Rotation><RotationInst><gametype>g</gametype><map>x</map>"
              "<map>m</map></RotationInst>\n<RotationInst/></Rotation><name>&#7;n</name></MapRotation></deep></r>");
        awaited(f.maps.loadMapRotation());
        QCOMPARE(f.maps.names(), QStringList({"", "n"}));
        QCOMPARE(f.maps.mapRotationList().value("n").rotationList, QList<MapRotationInst>({{"m", "g"}, {"", ""}}));
    }

    void keepsDamagedAndChangedFilesAside_data()
    {
        const auto row = dataColumns<QByteArray, bool>("content", "isDamaged");
        row("cut off", QByteArray("<KelMapRotation><MapRotation><name>n"), true);
        row("changed since", QByteArray("<KelMapRotation/>"), false);
    }
    void keepsDamagedAndChangedFilesAside()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, isDamaged);
        RotationFixture f;
        QVERIFY(awaited(f.maps.saveUIChanges("kept")));
        f.put(f.path, content);
        if (isDamaged)
            awaited(f.maps.loadMapRotation());
        QVERIFY(awaited(f.maps.saveUIChanges("new")));
        QCOMPARE(f.maps.names(), QStringList({"kept", "new"}));
        QCOMPARE(f.alerts.titles(),
                 QStringList({"Map Rotations Not Loaded", "Former File Kept"}).mid(isDamaged ? 0 : 1));
        const QString copies = isDamaged ? "*.damaged-*" : "*.changed-*";
        QCOMPARE(f.bytes(f.folder.filePath(QDir(f.folder.path()).entryList({copies}).value(0))), content);
    }

    void onlyWhatKilledSavesLeftIsRemoved()
    {
        RotationFixture f;
        const QDir folder(f.folder.path());
        QVERIFY(awaited(f.maps.saveUIChanges("n")));
        const auto put = [&](const QString &name, int age) {
            f.put(folder.filePath(name), f.bytes(f.path));
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly));
            QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-age), QFileDevice::FileModificationTime));
        };
        const QString own = "FerrowRcon.exe.maprotate";
        for (const char *ending :
             {".MyCopy", ".bak", ".backup", ".abcdef", ".ABCDEF", ".xKqPaw", ".abc123", ".changed-20260101-120000",
              ".damaged-20260101-120000-2", ".ferrow-part", ".MyCopy.ferrow-part", ".abcdef.ferrow-part.bak",
              ".abcdefg.ferrow-part", ".abcde.ferrow-part", "~"})
            put(own + ending, 86400);
        put("xFerrowRcon.exe.maprotate.abcdef.ferrow-part", 86400);
        put("other.maprotate.abcdef.ferrow-part", 86400);
        put(own + ".abcdef.ferrow-part", 20); // another console may be writing it
        QVERIFY(QFile::link(f.path, folder.filePath(own + ".linked.ferrow-part")));
        const QStringList kept = folder.entryList(QDir::Files | QDir::Hidden);
        put(own + ".a1b2c3.ferrow-part", 120);
        awaited(f.maps.loadMapRotation());
        QVERIFY(awaited(f.maps.saveUIChanges("m")));
        awaited(f.maps.deleteRotationNamed("m"));
        QCOMPARE(folder.entryList(QDir::Files | QDir::Hidden), kept);
    }

    void followsLinksAndKeepsRights()
    {
        RotationFixture f;
        const QString target = f.folder.filePath("elsewhere");
        QVERIFY(QFile::link(target, f.path));
        QVERIFY(awaited(f.maps.saveUIChanges("first"))); // to where nothing is yet
        QVERIFY(QFileInfo(f.path).isSymLink());
        QVERIFY(f.bytes(target).contains("first"));
        QVERIFY(awaited(f.maps.saveUIChanges("second")));
        QVERIFY(QFileInfo(f.path).isSymLink() && f.bytes(target).contains("second"));
        const QFileDevice::Permissions others = QFileDevice::ReadGroup | QFileDevice::ReadOther;
        QVERIFY((QFileInfo(target).permissions() & others) == 0);
    }
};

QTEST_GUILESS_MAIN(RotationFilesTest)
#include "tst_rotationfiles.moc"
