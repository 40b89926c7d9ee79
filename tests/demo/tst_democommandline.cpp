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
