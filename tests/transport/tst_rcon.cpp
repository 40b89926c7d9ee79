#include "RCon.h"
#include "TrafficLog.h"

#include <QTest>

#include <algorithm>
#include <array>
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
    TrafficLog log(QStringLiteral("127.0.0.1"), server.port, TrafficLog::Kind::Send);
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

} // namespace

class RConTest : public QObject
{
    Q_OBJECT
private slots:
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
        const QString told = QStringLiteral("\"sv_x\" is: \"1\" in force: \"1\"\n");

        failure("silence", task(), {}, {0, 500, 1750}, 3250, RConResultTimeout);
        failure("silence in the background", background, {}, {0}, 500, RConResultTimeout);
        failure("silence on a slow line", patient, {}, {0, 1400, 2800}, 4300, RConResultTimeout);
        row("never sooner than half a second", sparing, {{550, a}}, {0, 500}, 1300, "a");
        row("at once", task(), {{2, a}}, {0}, 502, "a");
        row("parts", task(), {{2, a}, {402, b}, {802, framed("c")}}, {0}, 1302, "abc");
        row("the same parts", task(), {{2, a}, {3, a}, {402, b}}, {0}, 902, "aab", 1);
        row("one for each send", task(), {{520, a}, {560, a}}, {0, 500}, 1310, "aa");
        row("one more than sends", task(), {{520, a}, {560, a}, {570, a}}, {0, 500}, 1320, "aaa", 1);
        row("in what used to be a pause", task(), {{510, a}}, {0, 500}, 1260, "a");
        row("late on a slow line", patient, {{1399, a}}, {0}, 1899, "a");
        row("third send", task(), {{3000, a}}, {0, 500, 1750}, 3750, "a");
        row("single", single, {{2, a}, {3, b}}, {0}, 2, "a");
        row("from another port", task(), {{2, a, otherPort}}, {0}, 502, "a");
        row("after a stranger", task(), {{1, b, stranger}, {2, a}, {3, b, stranger}}, {0}, 502, "a");
        failure("from strangers only", task(), {{1, b, stranger}, {501, b, stranger}}, {0, 500, 1750}, 3250,
                RConResultTimeout);
        failure("refused", task(), {{2, QByteArray::fromHex("ffffffff0a")}}, {0}, 2, RConResultInvalidPassword);
        failure("refused in the middle", task(), {{2, a}, {3, framed("Invalid password.\n")}}, {0}, 3,
                RConResultInvalidPassword);
        failure("rubbish", task(), {{2, "rubbish"}}, {0}, 2, RConResultInvalidPacket);
        failure("empty", task(), {{2, ""}}, {0}, 2, RConResultNullReply);
        row("empty as an end", task(), {{2, a}, {3, ""}}, {0}, 3, "a");
        row("variable", task("sv_x"), {{2, framed(told.toLatin1())}}, {0}, 2, told);
        row("variable in two parts", task("sv_x"),
            {{2, framed("\"sv_x\" is: \"1\" in fo")}, {40, framed("rce: \"1\"\n")}}, {0}, 40, told);
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

    /// Four parts, each of them lost, doubled, late or in another's place: the reply is what came, as it came.
    void everySchedule()
    {
        enum Fate { InTime, Lost, Doubled, Late, Swapped, FateCount };
        std::array<int, 4> fates{};
        int count = 0;
        for (int code = 0; code < FateCount * FateCount * FateCount * FateCount; ++code) {
            QList<Arrival> arrivals;
            int rest = code;
            for (int part = 0; part < 4; ++part) {
                fates.at(static_cast<std::size_t>(part)) = rest % FateCount;
                rest /= FateCount;
                const QByteArray datagram = framed(QByteArray(1, static_cast<char>('a' + part)));
                const int when = 20 + 100 * part;
                switch (fates.at(static_cast<std::size_t>(part))) {
                case Lost:
                    break;
                case Doubled:
                    arrivals.append({{when, datagram}, {when + 5, datagram}});
                    break;
                case Late:
                    arrivals.append({when + 1500, datagram});
                    break;
                case Swapped:
                    arrivals.append({when + 150, datagram});
                    break;
                default:
                    arrivals.append({when, datagram});
                }
            }
            std::stable_sort(arrivals.begin(), arrivals.end(),
                             [](const Arrival &one, const Arrival &other) { return one.at < other.at; });
            checkCourse(arrivals);
            if (QTest::currentTestFailed())
                return;
            ++count;
        }
        QCOMPARE(count, 625);
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

    void boundsOfAReply_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("as much text as is accepted") << QByteArray(1024, 'x') << 16'384 << true;
        QTest::newRow("more text") << QByteArray(1024, 'x') << 16'385 << false;
        QTest::newRow("as many datagrams as are accepted") << QByteArray() << 65'536 << true;
        QTest::newRow("one datagram more") << QByteArray() << 65'537 << false;
    }
    void boundsOfAReply()
    {
        QFETCH(QByteArray, payload);
        QFETCH(int, count);
        QFETCH(bool, isAccepted);
        const Course course = play(task(), QList<Arrival>(count, Arrival{1, framed(payload)}));
        QCOMPARE(course.outcome.result, isAccepted ? RConResultSuccess : RConResultError);
        QCOMPARE(course.outcome.text.size(),
                 isAccepted ? payload.size() * count : RCon::resultStr(RConResultError).size());
    }

    void strangersAreNamed()
    {
        const Course course =
            play(task(), {{1, "rubbish", stranger}, {2, framed("b"), stranger}, {3, "rubbish", stranger}});
        QCOMPARE(course.outcome.strangers, 3u);
        QCOMPARE(course.outcome.plausibleStranger.value().addressText(), "203.0.113.9");
        const Course rubbish = play(task(), {{1, "rubbish", stranger}});
        QVERIFY(!rubbish.outcome.plausibleStranger.has_value());
    }

    void lateDatagrams()
    {
        TrafficLog log(QStringLiteral("127.0.0.1"), server.port, TrafficLog::Kind::Send);
        RCon machine(task("sv_x"), log);
        const QByteArray told = framed("\"sv_x\" is: \"1\" in force: \"1\"\n");
        QVERIFY(play(machine, {{2, told}}).outcome.isEndKnown);
        QCOMPARE(machine.received(framed("x"), server, at(9)).kind, Kind::Finished); // adds nothing any more
        QCOMPARE(machine.outcome().datagrams, 1u);
        QCOMPARE(machine.takeLate(told, server), QString()); // the network has doubled it
        QCOMPARE(machine.takeLate(framed("more\n"), stranger), QString());
        QCOMPARE(machine.takeLate("rubbish", server), QString());
        QCOMPARE(machine.takeLate(framed("more\n"), server), "more\n");
        QCOMPARE(machine.outcome().doubled, 1u);
    }

private:
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
