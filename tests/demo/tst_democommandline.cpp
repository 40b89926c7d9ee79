#include "DemoCommandLine.h"

#include <QTest>

class TestDemoCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void refused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("says");
        QTest::newRow("port too high") << QStringList{"--port", "65536"}
                                       << "--port takes a whole number from 0 to 65535";
        QTest::newRow("too many players") << QStringList{"--players", "1001"} << "from 0 to 1000";
        QTest::newRow("loss above one") << QStringList{"--loss", "1.01"} << "--loss takes a number from 0 to 1";
        QTest::newRow("loss not a number") << QStringList{"--loss", "nan"} << "\"nan\"";
        QTest::newRow("throttle too long")
            << QStringList{"--throttle", "60001"} << "--throttle takes a whole number from 0 to 60000";
        QTest::newRow("gap below zero") << QStringList{"--gap", "-1"} << "--gap takes a whole number from 0 to 60000";
        QTest::newRow("lockout not a number") << QStringList{"--lockout", "many"} << "--lockout takes a whole number";
        QTest::newRow("restart too late") << QStringList{"--restart-after", "86401"} << "from 0 to 86400";
        QTest::newRow("unknown mode") << QStringList{"--restart-after", "1", "--restart-mode", "golf"}
                                      << "takes unranked, playlists or ranked, not \"golf\"";
        QTest::newRow("mode without restart")
            << QStringList{"--restart-mode", "ranked"} << "--restart-mode needs --restart-after";
        QTest::newRow("unknown option") << QStringList{"--fast"} << "fast";
        QTest::newRow("stray word") << QStringList{"--ranked", "50960"} << "\"50960\"";
        QTest::newRow("password beyond Latin-1") << QStringList{"--password", u"\u0416"_qs} << "password";
    }
    void refused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, says);
        const DemoCommandLine line = DemoCommandLine::parse(QStringList{"ferrow-demo-server"} + arguments, {});
        QCOMPARE(line.task, DemoCommandLine::Task::Refuse);
        QVERIFY2(line.text.contains(says), qPrintable(line.text));
    }

    void accepted()
    {
        const QString typed = "demo --port 50960 --players 30 --ranked --frozen --loss 0.25 --delay 150 --duplicate 1 "
                              "--silent-after 2";
        const DemoCommandLine line = DemoCommandLine::parse(typed.split(u' '), {});
        QCOMPARE(line.task, DemoCommandLine::Task::Serve);
        const DemoOptions &options = line.options;
        QCOMPARE(options.port, 50960);
        QCOMPARE(options.players, 30);
        QVERIFY(options.ranked && options.frozen && !options.playlists && !options.faults.silent);
        QCOMPARE(options.faults.loss, 0.25);
        QCOMPARE(options.faults.duplication, 1.0);
        QCOMPARE(options.faults.silentAfter, 2);
        QCOMPARE(options.faults.delay, std::chrono::milliseconds(150));
        QVERIFY(options.dumpCount && !options.sparse && !options.faults.stranger && !options.restartMode);
        QCOMPARE(options.restartAfter, std::chrono::milliseconds(0));
    }

    void acceptedForTheLink()
    {
        const QString typed = "demo --throttle 250 --lockout 20 --gap 30 --stranger --sparse --no-count "
                              "--restart-after 5";
        const DemoCommandLine line = DemoCommandLine::parse(typed.split(u' '), {});
        QCOMPARE(line.text, "");
        const DemoOptions &options = line.options;
        QCOMPARE(options.faults.throttle, std::chrono::milliseconds(250));
        QCOMPARE(options.faults.lockout, 20);
        QCOMPARE(options.faults.gap, std::chrono::milliseconds(30));
        QVERIFY(options.faults.stranger && options.sparse && !options.dumpCount);
        QCOMPARE(options.restartAfter, std::chrono::milliseconds(5000));
        QCOMPARE(options.awayFor, std::chrono::milliseconds(3000));
        QVERIFY(!options.restartMode);
    }

    void restartMode_data()
    {
        QTest::addColumn<DemoMode>("mode");
        QTest::newRow("unranked") << DemoMode::Unranked;
        QTest::newRow("playlists") << DemoMode::Playlists;
        QTest::newRow("ranked") << DemoMode::Ranked;
    }
    void restartMode()
    {
        QFETCH(DemoMode, mode);
        const QStringList typed{"demo", "--restart-after", "1", "--restart-mode", QTest::currentDataTag()};
        const DemoCommandLine line = DemoCommandLine::parse(typed, {});
        QCOMPARE(line.task, DemoCommandLine::Task::Serve);
        QVERIFY(line.options.restartMode == mode);
    }

    void password()
    {
        QCOMPARE(DemoCommandLine::parse({"demo"}, {}).options.password, "demo");
        QCOMPARE(DemoCommandLine::parse({"demo"}, "shell").options.password, "shell");
        QCOMPARE(DemoCommandLine::parse({"demo", "--password", ""}, "shell").options.password, "");
    }
};

QTEST_GUILESS_MAIN(TestDemoCommandLine)
#include "tst_democommandline.moc"
