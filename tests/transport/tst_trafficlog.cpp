#include "RCon.h"
#include "TrafficLog.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;

namespace
{

const Endpoint server{0x7f000001, 50960};
const QString timeOutText = QStringLiteral(
    "A connection attempt failed because the connected party did not properly respond after a period of time, or "
    "established a connection failed because connected host has failed to respond.");

QByteArray framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

RCon::TimePoint at(int milliseconds)
{
    return RCon::TimePoint(1000s + std::chrono::milliseconds(milliseconds));
}

} // namespace

/// What exchanges leave in the log.
class TrafficLogTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid() && QDir::setCurrent(m_folder.path()));
        qputenv("FerrowRconLog", "1");
        qputenv("TZ", "TEST+03:30"); // west of Greenwich, and not by whole hours
    }
    void init()
    {
        QFile log("log.txt");
        QVERIFY(log.open(QIODevice::WriteOnly));
    }

    void exchanges_data()
    {
        QTest::addColumn<int>("lost"); // sends
        QTest::addColumn<bool>("isSingle");
        QTest::addColumn<QList<QByteArray>>("datagrams");
        QTest::addColumn<QStringList>("lines");
        const QString late = timeOutText;
        QTest::newRow("silence") << 3 << false << QList<QByteArray>()
                                 << QStringList{" Send(1): status %1 all", "  Res(1): " + late + " numPackets=0",
                                                " Send(2): status %1 all", "  Res(2): " + late + " numPackets=0",
                                                " Send(3): status %1 all", "  Res(3): " + late + " numPackets=0"};
        QTest::newRow("second send, four datagrams")
            << 1 << false << QList<QByteArray>(4, framed("x"))
            << QStringList{" Send(1): status %1 all", "  Res(1): " + late + " numPackets=0", " Send(2): status %1 all",
                           "  Res(2): RConResultSuccess numPackets=4"};
        QTest::newRow("single, third send")
            << 2 << true << QList<QByteArray>{framed("x")}
            << QStringList{" SendSingle(1): status %1 all", "  Res(1): " + late + "@",
                           " SendSingle(2): status %1 all", "  Res(2): " + late,
                           " SendSingle(3): status %1 all", "  Res(3): RConResultSuccess"};
        QTest::newRow("refused") << 0 << false << QList<QByteArray>{QByteArray::fromHex("ffffffff0a")}
                                 << QStringList{" Send(1): status %1 all", "  Res(1): Invalid Password. numPackets=0"};
        QTest::newRow("rubbish") << 0 << true << QList<QByteArray>{"rubbish"}
                                 << QStringList{" SendSingle(1): status %1 all", "  Res(1): RConResultInvalidPacket@"};
    }
    void exchanges()
    {
        QFETCH(int, lost);
        QFETCH(bool, isSingle);
        QFETCH(QList<QByteArray>, datagrams);
        {
            TrafficLog log("127.0.0.1", 50960, isSingle ? TrafficLog::Kind::SendSingle : TrafficLog::Kind::Send);
            RCon::Task task;
            task.server = server;
            task.command = "status %1 all";
            task.isSingle = isSingle;
            RCon machine(task, log);
            RCon::Step step = machine.start(at(0));
            for (int i = 0; i < lost; ++i)
                step = machine.elapsed(step.until);
            for (const QByteArray &datagram : datagrams)
                step = machine.received(datagram, server, step.until - 1ms);
            if (!machine.isFinished())
                step = machine.elapsed(step.until);
            QVERIFY(machine.isFinished());
        }
        QTEST(logLines(), "lines");
    }

    void endsThatAreKnown()
    {
        {
            TrafficLog log("127.0.0.1", 50960, TrafficLog::Kind::Send);
            RCon::Task task;
            task.server = server;
            task.command = "sv_x";
            task.end = ReplyEnd(task.command);
            RCon machine(task, log);
            static_cast<void>(machine.start(at(0)));
            const QByteArray told = framed("\"sv_x\" is: \"1\" in force: \"1\"\n");
            static_cast<void>(machine.received(told, server, at(1)));
            static_cast<void>(machine.takeLate(told, server));
            static_cast<void>(machine.takeLate(framed("more"), server));
        }
        QCOMPARE(logLines(),
                 QStringList({" Send(1): sv_x", "  Res(1): RConResultSuccess numPackets=1", "  End(1): known",
                              "  Late(1): 40 bytes, seen before", "  Late(1): 15 bytes, new"}));
    }

    void passwordsStayOut_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("logged");
        QTest::newRow("written") << "setadmindvar rcon_password \"a b\""
                                 << "setadmindvar rcon_password ***";
        QTest::newRow("typed") << "  G_Password x"
                               << "  G_Password ***";
        QTest::newRow("asked for") << "rcon_password"
                                   << "rcon_password";
        QTest::newRow("talked about") << "say the password is out"
                                      << "say the password is out";
    }
    void passwordsStayOut()
    {
        QFETCH(QString, command);
        TrafficLog("127.0.0.1", 50960, TrafficLog::Kind::SendSingle).writeSend(1, command);
        QTEST(logLines().first().section(" SendSingle(1): ", 1), "logged");
    }

    void loggingOff_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("hasFile");
        QTest::newRow("unset") << QByteArray() << true;
        QTest::newRow("zero") << QByteArray("0") << true;
        QTest::newRow("one and a blank") << QByteArray("1 ") << true;
        QTest::newRow("no file") << QByteArray("1") << false;
    }
    void loggingOff()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, hasFile);
        const auto back = qScopeGuard([] { qputenv("FerrowRconLog", "1"); });
        if (!hasFile)
            QVERIFY(QFile::remove("log.txt"));
        if (value.isEmpty())
            qunsetenv("FerrowRconLog");
        else
            qputenv("FerrowRconLog", value);
        TrafficLog("127.0.0.1", 50960, TrafficLog::Kind::Send).writeSend(1, "status");
        QCOMPARE(QFile::exists("log.txt"), hasFile);
        QCOMPARE(QFile("log.txt").size(), 0);
    }

private:
    /// Each line begins with a date and the server, which are checked and taken off.
    static QStringList logLines()
    {
        QFile file("log.txt");
        if (!file.open(QIODevice::ReadOnly))
            return {};
        static const QRegularExpression line(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d -0330 \(127\.0\.0\.1:50960\)(.*)$)");
        QStringList lines;
        const QStringList all = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        for (const QString &text : all) {
            const QRegularExpressionMatch match = line.match(text);
            lines.append(match.hasMatch() ? match.captured(1) : "unexpected: " + text);
        }
        return lines;
    }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(TrafficLogTest)
#include "tst_trafficlog.moc"
