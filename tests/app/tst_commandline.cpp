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
        const auto row = [](const char *name, const QStringList &arguments, const char *target, bool isGood = true) {
            QTest::newRow(name) << arguments << QString(target) << isGood;
        };
        row("nothing", {}, "");
        row("a host name is judged by the session", {"--connect=game.example:x"}, "game.example:x");
        row("a label, perhaps", {"--connect", " Home server "}, "Home server");
        row("demo", {"--demo"}, "demo");
        row("no port", {"--connect", "192.0.2.1:"}, "", false);
        row("nothing to connect to", {"--connect", " "}, "", false);
        row("no password on the line", {"--password", "secret"}, "", false);
        row("both", {"--demo", "--connect", "192.0.2.1:1"}, "", false);
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

    void theSupportFolderIsTheOwnersOnly()
    {
        QStandardPaths::setTestModeEnabled(true);
        const QString folder = AppDelegate::applicationSupportDirectory();
        QVERIFY(folder.endsWith(QStringLiteral("/Kelvard Ferrow Remote Console")));
        QCOMPARE(QFileInfo(folder).permissions() & QFile::Permissions(0x0077), QFile::Permissions());
        QCOMPARE(AppDelegate::applicationSupportDirectory(), folder);
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "tst_commandline.moc"
