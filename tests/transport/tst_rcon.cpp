#include "DataColumns.h"
#include "RCon.h"
#include "TrafficLog.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <random>

using namespace std::chrono_literals;
using Kind = RCon::Step::Kind;

namespace
{

const Endpoint server{0x7f000001, 50960};
const Endpoint otherPort{0x7f000001, 50961};
const Endpoint stranger{0xcb007109, 50960}; // 203.0.113.9

QByteArray framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

struct Arrival {
    int at = 0; // milliseconds after the first send
    QByteArray datagram;
    Endpoint from = server;
};

/// What a machine did in simulated time.
struct Course {
    QList<int> sends; // when
    int end = 0;      // when
    QString streamed;
    RCon::Outcome outcome;
};

RCon::TimePoint at(int milliseconds)
{
    return RCon::TimePoint(1000s + std::chrono::milliseconds(milliseconds));
}

Course play(RCon &machine, const QList<Arrival> &arrivals)
{
    Course course;
    RCon::Step step = machine.start(at(0));
    int now = 0;
    qsizetype next = 0;
    while (step.kind != Kind::Finished) {
        if (step.kind == Kind::Send)
            course.sends.append(now);
        const int until = static_cast<int>((step.until - at(0)) / 1ms);
        if (next < arrivals.size() && arrivals.at(next).at <= until) {
            const Arrival &arrival = arrivals.at(next++);
            now = std::max(now, arrival.at);
            step = machine.received(arrival.datagram, arrival.from, at(now));
        } else {
            now = until;
            step = machine.elapsed(at(now));
        }
        course.streamed += step.text;
    }
    course.end = now;
    course.outcome = machine.outcome();
    return course;
}

Course play(const RCon::Task &task, const QList<Arrival> &arrivals)
{
    TrafficLog log("127.0.0.1", server.port, task.isSingle ? TrafficLog::Kind::SendSingle : TrafficLog::Kind::Send);
    RCon machine(task, log);
    return play(machine, arrivals);
}

RCon::Task task(const QString &command = QStringLiteral("status all"))
{
    RCon::Task made;
    made.server = server;
    made.command = command;
    made.end = ReplyEnd(command);
    return made;
}

/// What stands in the log. Each line begins with a date and the server, which are checked and taken off.
QStringList logLines()
{
    static const QRegularExpression start(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d -0330 \(127\.0\.0\.1:50960\))");
    QFile file("log.txt");
    QStringList lines;
    if (file.open(QIODevice::ReadOnly))
        lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (QString &line : lines)
        line = start.match(line).hasMatch() ? line.remove(start) : "unexpected: " + line;
    return lines;
}

} // namespace

class RConTest : public QObject
{
    Q_OBJECT
    QTemporaryDir m_folder;

private slots:
    void initTestCase()
    {
        QVERIFY(QDir::setCurrent(m_folder.path()));
        qputenv("TZ", "TEST+03:30"); // west of Greenwich, and not by whole hours
    }
    /// Logging is on for those that ask for it.
    void cleanup() { qunsetenv("FerrowRconLog"); }

    void courses_data()
    {
        QTest::addColumn<RCon::Task>("task");
        QTest::addColumn<QList<Arrival>>("arrivals");
        QTest::addColumn<QList<int>>("sends");
        QTest::addColumn<int>("end");
        QTest::addColumn<unsigned>("result");
        QTest::addColumn<QString>("text");
        QTest::addColumn<unsigned>("doubled");
        const auto row = [](const char *name, const RCon::Task &asked, const QList<Arrival> &arrivals,
                            const QList<int> &sends, int end, const QString &text, unsigned doubled = 0) {
            QTest::newRow(name) << asked << arrivals << sends << end << unsigned(RConResultSuccess) << text << doubled;
        };
        const auto failure = [](const char *name, const RCon::Task &asked, const QList<Arrival> &arrivals,
                                const QList<int> &sends, int end, RConResult result) {
            QTest::newRow(name) << asked << arrivals << sends << end << unsigned(result) << RCon::resultStr(result)
                                << 0u;
        };
        RCon::Task background = task();
        background.isBackground = true;
        RCon::Task single = task();
        single.isSingle = true;
        RCon::Task patient = task();
        patient.firstWait = 1400ms;
        RCon::Task sparing = task();
        sparing.firstWait = 100ms;
        const QByteArray a = framed("a");
        const QByteArray b = framed("b");
        const QString told = QStringLiteral("\"tw_x\" is: \"1\" in force: \"1\"\n");

        failure("silence in the background", background, {}, {0}, 500, RConResultTimeout);
        failure("silence on a slow line", patient, {}, {0, 1400, 2800}, 4300, RConResultTimeout);
        row("never sooner than half a second", sparing, {{550, a}}, {0, 500}, 1300, "a");
        row("one more than sends", task(), {{520, a}, {560, a}, {570, a}}, {0, 500}, 1320, "aaa", 1);
        row("single", single, {{2, a}, {3, b}}, {0}, 2, "a");
        row("from another port", task(), {{2, a, otherPort}}, {0}, 502, "a");
        failure("refused", task(), {{2, QByteArray::fromHex("ffffffff0a")}}, {0}, 2, RConResultInvalidPassword);
        failure("refused in the middle", task(), {{2, a}, {3, framed("Invalid password.\n")}}, {0}, 3,
                RConResultInvalidPassword);
        failure("rubbish", task(), {{2, "rubbish"}}, {0}, 2, RConResultInvalidPacket);
        failure("empty", task(), {{2, ""}}, {0}, 2, RConResultNullReply);
        row("empty as an end", task(), {{2, a}, {3, ""}}, {0}, 3, "a");
        row("variable", task("tw_x"), {{2, framed(told.toLatin1())}}, {0}, 2, told);
        row("variable in two parts", task("tw_x"),
            {{2, framed("\"tw_x\" is: \"1\" in fo")}, {40, framed("rce: \"1\"\n")}}, {0}, 40, told);
        row("players", task("teamstatus"), {{2, framed(told.toLatin1())}}, {0}, 502, told);
        row("dump that names its number", task("dvardump"),
            {{2, framed("a \"1\"\n")}, {9, framed("b \"\"\n2 total dvars\n")}}, {0}, 9,
            "a \"1\"\nb \"\"\n2 total dvars\n");
        row("doubled part for a lost one", task("dvardump"),
            {{2, framed("a \"1\"\n")}, {3, framed("a \"1\"\n")}, {9, framed("2 total dvars\n")}}, {0}, 509,
            "a \"1\"\na \"1\"\n2 total dvars\n", 1);
        row("write answered with nothing", task("setadmindvar a \"1\""), {{2, framed("")}}, {0}, 2, "");
        row("write answered with a text", task("setadmindvar a \"1\""), {{2, framed("no")}, {3, framed("")}}, {0}, 503,
            "no");
    }
    void courses()
    {
        QFETCH(RCon::Task, task);
        QFETCH(QList<Arrival>, arrivals);
        const Course course = play(task, arrivals);
        QTEST(course.sends, "sends");
        QTEST(course.end, "end");
        QTEST(unsigned(course.outcome.result), "result");
        QTEST(course.outcome.text, "text");
        QTEST(course.outcome.doubled, "doubled");
    }

    /// Four parts, each of them in time, lost, doubled, late or in another's place.
    void everySchedule()
    {
        enum Fate { InTime, Lost, Doubled, Late, Swapped, FateCount };
        constexpr int schedules = FateCount * FateCount * FateCount * FateCount;
        for (int code = 0; code < schedules && !QTest::currentTestFailed(); ++code) {
            QList<Arrival> arrivals;
            for (int part = 0, rest = code; part < 4; ++part, rest /= FateCount) {
                const int fate = rest % FateCount;
                const int delay = fate == Late ? 1500 : fate == Swapped ? 150 : 0;
                const Arrival arrival{20 + 100 * part + delay, framed(QByteArray(1, static_cast<char>('a' + part)))};
                arrivals += QList<Arrival>(fate == Lost ? 0 : fate == Doubled ? 2 : 1, arrival);
            }
            std::stable_sort(arrivals.begin(), arrivals.end(),
                             [](const Arrival &one, const Arrival &other) { return one.at < other.at; });
            checkCourse(arrivals);
        }
    }

    void randomSchedules()
    {
        std::mt19937 random(20261126);
        for (int course = 0; course < 100'000; ++course) {
            QList<Arrival> arrivals;
            const int count = static_cast<int>(random() % 7);
            for (int i = 0; i < count; ++i) {
                const QByteArray datagram = framed(QByteArray(1, static_cast<char>('a' + random() % 4)));
                arrivals.append({static_cast<int>(random() % 4000), datagram, random() % 5 == 0 ? stranger : server});
            }
            std::stable_sort(arrivals.begin(), arrivals.end(),
                             [](const Arrival &one, const Arrival &other) { return one.at < other.at; });
            checkCourse(arrivals);
            if (QTest::currentTestFailed())
                return;
        }
    }

    void boundsOfAReply()
    {
        for (const auto &[size, most] : {std::pair(1024, 16'384), {0, 65'536}}) { // text, and datagrams
            const Arrival arrival{1, framed(QByteArray(size, 'x'))};
            const Course accepted = play(task(), QList<Arrival>(most, arrival));
            QCOMPARE(accepted.outcome.result, RConResultSuccess);
            QCOMPARE(accepted.outcome.text.size(), size * most);
            QCOMPARE(play(task(), QList<Arrival>(most + 1, arrival)).outcome.result, RConResultError);
        }
    }

    void logs_data()
    {
        const auto row = dataColumns<bool, QList<Arrival>, QStringList>("isSingle", "arrivals", "lines");
        const QString late = "A connection attempt failed because the connected party did not properly respond after a "
                             "period of time, or established a connection failed because connected host has failed to "
                             "respond.";
        const QByteArray x = framed("x");
        row("silence", false, QList<Arrival>(),
            QStringList{" Send(1): status %1 all", "  Res(1): " + late + " numPackets=0", " Send(2): status %1 all",
                        "  Res(2): " + late + " numPackets=0", " Send(3): status %1 all",
                        "  Res(3): " + late + " numPackets=0"});
        row("single, third send", true, QList<Arrival>{{2000, x}},
            QStringList{" SendSingle(1): status %1 all", "  Res(1): " + late + "@", " SendSingle(2): status %1 all",
                        "  Res(2): " + late, " SendSingle(3): status %1 all", "  Res(3): RConResultSuccess"});
    }
    void logs()
    {
        QFETCH(bool, isSingle);
        QFETCH(QList<Arrival>, arrivals);
        startLog();
        RCon::Task asked = task("status %1 all");
        asked.isSingle = isSingle;
        static_cast<void>(play(asked, arrivals));
        QTEST(logLines(), "lines");
    }

    void passwordsStayOutOfTheLog()
    {
        startLog();
        TrafficLog log("127.0.0.1", server.port, TrafficLog::Kind::Send);
        for (const char *command :
             {"setadmindvar rcon_password \"a b\"", "  G_Password x", "rcon_password", "say the password is out"})
            log.writeSend(1, command);
        QCOMPARE(logLines(), QStringList({" Send(1): setadmindvar rcon_password ***", " Send(1):   G_Password ***",
                                          " Send(1): rcon_password", " Send(1): say the password is out"}));
    }

    void loggingOff()
    {
        for (const char *value : {"", "0", "1 ", "1"}) {
            startLog();
            const bool isOn = qstrcmp(value, "1") == 0;
            if (isOn) // but there is no file
                QVERIFY(QFile::remove("log.txt"));
            qputenv("FerrowRconLog", value);
            TrafficLog("127.0.0.1", server.port, TrafficLog::Kind::Send).writeSend(1, "status");
            QCOMPARE(QFile::exists("log.txt"), !isOn);
            QCOMPARE(logLines(), QStringList());
        }
    }

private:
    static void startLog()
    {
        qputenv("FerrowRconLog", "1");
        QVERIFY(QFile("log.txt").open(QIODevice::WriteOnly));
    }

    /// What holds for every course, by a model of its own.
    static void checkCourse(const QList<Arrival> &arrivals)
    {
        const Course course = play(task(), arrivals);
        QString expected;
        QList<int> sends{0, 500, 1750};
        int end = 3250;
        for (const Arrival &arrival : arrivals) {
            if (arrival.from == stranger || arrival.at > end)
                continue;
            if (expected.isEmpty())
                sends.removeIf([&arrival](int sent) { return sent > 0 && sent >= arrival.at; });
            expected += QString::fromLatin1(arrival.datagram.last(1));
            end = arrival.at + (sends.size() == 1 ? 500 : 750);
        }
        QCOMPARE(course.sends, sends);
        QCOMPARE(course.end, end);
        QCOMPARE(course.outcome.result, expected.isEmpty() ? RConResultTimeout : RConResultSuccess);
        QCOMPARE(course.streamed, expected);
        if (!expected.isEmpty())
            QCOMPARE(course.outcome.text, expected);
    }
};

QTEST_GUILESS_MAIN(RConTest)
#include "tst_rcon.moc"
