#include "DemoCommandLine.h"

#include <QTest>

class TestDemoCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void refused_data();
    void refused();
    void accepted();
    void password_data();
    void password();
    void textsAreShown_data();
    void textsAreShown();
};

void TestDemoCommandLine::refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("says");
    QTest::newRow("port too high") << QStringList{"--port", "65536"} << "--port takes a whole number from 0 to 65535";
    QTest::newRow("port negative") << QStringList{"--port=-1"} << "\"-1\"";
    QTest::newRow("port a word") << QStringList{"--port", "http"} << "\"http\"";
    QTest::newRow("port empty") << QStringList{"--port="} << "--port";
    QTest::newRow("port missing") << QStringList{"--port"} << "port";
    QTest::newRow("too many players") << QStringList{"--players", "1001"} << "from 0 to 1000";
    QTest::newRow("seed too large") << QStringList{"--seed", "18446744073709551616"} << "--seed";
    QTest::newRow("loss above one") << QStringList{"--loss", "1.01"} << "--loss takes a number from 0 to 1";
    QTest::newRow("loss negative") << QStringList{"--loss=-0.1"} << "--loss";
    QTest::newRow("loss not a number") << QStringList{"--loss", "nan"} << "\"nan\"";
    QTest::newRow("duplicate in per cent") << QStringList{"--duplicate", "5%"} << "--duplicate";
    QTest::newRow("garbage endless") << QStringList{"--garbage", "inf"} << "--garbage";
    QTest::newRow("delay too long") << QStringList{"--delay", "60001"} << "from 0 to 60000";
    QTest::newRow("delay with a unit") << QStringList{"--delay", "5s"} << "--delay";
    QTest::newRow("unknown option") << QStringList{"--fast"} << "fast";
    QTest::newRow("value for a switch") << QStringList{"--ranked=no"} << "ranked";
    QTest::newRow("stray word") << QStringList{"--ranked", "28960"} << "\"28960\"";
    QTest::newRow("password beyond Latin-1") << QStringList{"--password", u"\u0416"_qs} << "password";
    QTest::newRow("password with a quote") << QStringList{"--password", "a\"b"} << "password";
    QTest::newRow("first fault counts") << QStringList{"--port", "x", "--loss", "y"} << "--port";
}

void TestDemoCommandLine::refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, says);
    const DemoCommandLine line = DemoCommandLine::parse(QStringList{"ferrow-demo-server"} + arguments, {});
    QCOMPARE(line.task, DemoCommandLine::Task::Refuse);
    QVERIFY2(line.text.contains(says), qPrintable(line.text));
}

void TestDemoCommandLine::accepted()
{
    const QStringList arguments{"ferrow-demo-server",
                                "--port",
                                "28960",
                                "--ranked",
                                "--playlists",
                                "--players",
                                "30",
                                "--seed",
                                "18446744073709551615",
                                "--frozen",
                                "--loss",
                                "0.25",
                                "--delay",
                                "150",
                                "--duplicate",
                                "1",
                                "--garbage",
                                "0",
                                "--reorder",
                                "--silent",
                                "--refusal-text"};
    const DemoCommandLine line = DemoCommandLine::parse(arguments, {});
    QCOMPARE(line.task, DemoCommandLine::Task::Serve);
    const DemoOptions &options = line.options;
    QCOMPARE(options.port, 28960);
    QVERIFY(options.ranked && options.playlists && options.frozen && options.refusalText);
    QCOMPARE(options.players, 30);
    QCOMPARE(options.seed, std::numeric_limits<quint64>::max());
    QCOMPARE(options.faults.loss, 0.25);
    QCOMPARE(options.faults.duplication, 1.0);
    QCOMPARE(options.faults.garbage, 0.0);
    QCOMPARE(options.faults.delay, std::chrono::milliseconds(150));
    QVERIFY(options.faults.reorder && options.faults.silent);
}

void TestDemoCommandLine::password_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QString>("expected");
    QTest::newRow("neither") << QStringList() << QString() << "demo";
    QTest::newRow("environment") << QStringList() << "from the shell"
                                 << "from the shell";
    QTest::newRow("environment empty") << QStringList() << ""
                                       << "demo";
    QTest::newRow("both") << QStringList{"--password", "typed"} << "from the shell"
                          << "typed";
    QTest::newRow("switched off") << QStringList{"--password", ""} << QString() << "";
}

void TestDemoCommandLine::password()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, environment);
    const DemoCommandLine line = DemoCommandLine::parse(QStringList{"ferrow-demo-server"} + arguments, environment);
    QCOMPARE(line.task, DemoCommandLine::Task::Serve);
    QTEST(line.options.password, "expected");
}

void TestDemoCommandLine::textsAreShown_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("says");
    QTest::newRow("help") << "--help"
                          << "FERROW_DEMO_PASSWORD";
    QTest::newRow("help, short") << "-h"
                                 << "--refusal-text";
    QTest::newRow("version") << "--version"
                             << "7.8.9";
}

void TestDemoCommandLine::textsAreShown()
{
    QFETCH(QString, option);
    QFETCH(QString, says);
    QCoreApplication::setApplicationVersion("7.8.9");
    const DemoCommandLine line = DemoCommandLine::parse({"ferrow-demo-server", option}, {});
    QCOMPARE(line.task, DemoCommandLine::Task::ShowText);
    QVERIFY2(line.text.contains(says), qPrintable(line.text));
}

QTEST_GUILESS_MAIN(TestDemoCommandLine)
#include "tst_democommandline.moc"
