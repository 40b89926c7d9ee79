#include "AppDelegate.h"
#include "CommandLine.h"

#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

class CommandLineTest : public QObject
{
    Q_OBJECT
private slots:
    void parses_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("target"); // host and port, or "demo"
        QTest::addColumn<bool>("isGood");
        QTest::newRow("nothing") << QStringList{} << "" << true;
        QTest::newRow("connect") << QStringList{"--connect", "192.0.2.1:50960"} << "192.0.2.1:50960" << true;
        QTest::newRow("a host name is judged by the session")
            << QStringList{"--connect=game.example:x"} << "game.example:x" << true;
        QTest::newRow("a label, perhaps") << QStringList{"--connect", " Home server "} << "Home server" << true;
        QTest::newRow("no port") << QStringList{"--connect", "192.0.2.1:"} << "" << false;
        QTest::newRow("nothing to connect to") << QStringList{"--connect", " "} << "" << false;
        QTest::newRow("no host") << QStringList{"--connect", ":50960"} << "" << false;
        QTest::newRow("no password on the line") << QStringList{"--password", "secret"} << "" << false;
        QTest::newRow("a word of its own") << QStringList{"192.0.2.1:50960"} << "" << false;
        QTest::newRow("demo") << QStringList{"--demo"} << "demo" << true;
        QTest::newRow("both") << QStringList{"--demo", "--connect", "192.0.2.1:1"} << "" << false;
    }
    void parses()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, isGood);
        const CommandLine line = CommandLine::parse(QStringList{"ferrow-rcon"} + arguments);
        QCOMPARE(line.error.isEmpty(), isGood);
        if (isGood)
            QTEST(line.isDemo ? QStringLiteral("demo") : line.target, "target");
    }

    void answersOnlyWhatIsAsked()
    {
        const auto answer = [](const char *argument) {
            return CommandLine::answerWithoutDisplay({QStringLiteral("ferrow-rcon"), QLatin1String(argument)});
        };
        QVERIFY(answer("-h").contains(QStringLiteral("--demo")));
        QVERIFY(answer("-v").contains(CommandLine::version()));
        QCOMPARE(answer("-reverse"), QString());
        QCOMPARE(answer("-qwindowgeometry"), QString());
    }

    void theSupportFolderIsTheOwnersOnly()
    {
        QStandardPaths::setTestModeEnabled(true);
        const QString folder = AppDelegate::applicationSupportDirectory();
        QVERIFY(folder.endsWith(QStringLiteral("/Kelvard Ferrow Remote Console")));
        QCOMPARE(QFileInfo(folder).permissions() & (QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                                    QFile::ReadOther | QFile::WriteOther | QFile::ExeOther),
                 QFile::Permissions{});
        QCOMPARE(AppDelegate::applicationSupportDirectory(), folder);
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "tst_commandline.moc"
