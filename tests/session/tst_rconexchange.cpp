#include "RCon.h"
#include "RConExchange.h"
#include "ScriptedPeer.h"
#include "Wait.h"

#include <QElapsedTimer>
#include <QTest>

using namespace std::chrono_literals;

namespace
{

using Answer = ScriptedPeer::Answer;

const auto framed = &ScriptedPeer::framed;
const QByteArray told = framed("\"sv_x\" is: \"1\" in force: \"1\"\n");

Request requestTo(const ScriptedPeer &peer, const QString &command = QStringLiteral("status"))
{
    return Request{"127.0.0.1", peer.port(), "secret", command, false, false};
}

} // namespace

class RConExchangeTest : public QObject
{
    Q_OBJECT
private slots:
    void showsEachDatagramWhenItComes()
    {
        ScriptedPeer peer({{{framed("a")}, {framed("b"), 200ms}, {framed("c"), 200ms}}});
        RConExchange exchange;
        QElapsedTimer timer;
        QStringList texts;
        QList<qint64> times;
        timer.start();
        const Arrived arrived = [&](const QString &text) {
            texts.append(text);
            times.append(timer.elapsed());
        };
        const Reply reply = awaited(exchange.send(requestTo(peer), arrived));
        QCOMPARE(reply.text, "abc");
        QCOMPARE(texts, QStringList({"a", "b", "c"}));
        QVERIFY2(times.at(1) < 390 && times.at(2) < 600, QByteArray::number(times.at(2))); // not at the end
        QVERIFY(timer.elapsed() >= 880);
        QCOMPARE(peer.requests(), QList<QByteArray>{QByteArray::fromHex("ffffffff00") + "secret status" + '\0'});
    }

    void cancelled_data()
    {
        QTest::addColumn<QList<Answer>>("script");
        QTest::addColumn<int>("requests"); // before it is called off
        QTest::newRow("waiting for the first send") << QList<Answer>{} << 1;
        QTest::newRow("waiting for the second send") << QList<Answer>{} << 2;
        QTest::newRow("reading") << QList<Answer>{{{framed("x"), 5ms, 100'000}}} << 1;
    }
    void cancelled()
    {
        QFETCH(QList<Answer>, script);
        QFETCH(int, requests);
        ScriptedPeer peer(script);
        RConExchange exchange;
        int late = 0;
        bool isOver = false;
        const Arrived arrived = [&](const QString &) {
            late += isOver ? 1 : 0;
        };
        QCoro::Task<Reply> sending = exchange.send(requestTo(peer), arrived);
        QVERIFY(QTest::qWaitFor([&peer, requests] { return peer.requestCount() >= requests; }));
        QElapsedTimer timer;
        timer.start();
        exchange.cancel();
        isOver = true;
        const Reply reply = awaited(std::move(sending));
        QVERIFY2(timer.elapsed() < 50, QByteArray::number(timer.elapsed()));
        QVERIFY(reply.isCancelled && !reply.isSuccess());
        QVERIFY(!QTest::qWaitFor([&peer, requests] { return peer.requestCount() > requests; }, 1500)); // sends no more
        QCOMPARE(late, 0);
    }

    void calledOffByWhoReadsIt()
    {
        ScriptedPeer peer({{{framed("a")}, {framed("b")}}});
        RConExchange exchange;
        int count = 0;
        const Arrived arrived = [&](const QString &) {
            ++count;
            exchange.cancel();
        };
        QVERIFY(awaited(exchange.send(requestTo(peer), arrived)).isCancelled);
        QCOMPARE(count, 1);
    }

    void knownEndsAndWhatComesAfterThem()
    {
        ScriptedPeer peer({{{told}, {told, 100ms}, {framed("late\n"), 100ms}}, {{told}}});
        RConExchange exchange;
        QStringList late;
        exchange.setCameLate([&late](const QString &command, const QString &text) { late += command + u' ' + text; });
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(awaited(exchange.send(requestTo(peer, "sv_x"))).text.size(), 29);
        QVERIFY2(timer.elapsed() < 450, QByteArray::number(timer.elapsed()));
        QTRY_COMPARE(late, QStringList{"sv_x late\n"});
        QCOMPARE(exchange.link().stats.late(), 1u); // what was only doubled is not told
        QCOMPARE(exchange.link().stats.doubled(), 1u);
        timer.start();
        QVERIFY(awaited(exchange.send(requestTo(peer, "sv_x"))).isSuccess());
        QVERIFY2(timer.elapsed() >= 490, QByteArray::number(timer.elapsed())); // trusts its ends no more
        exchange.startOver();
        QVERIFY(!exchange.link().stats.lastHeard());
    }

    void emptyAnswersToWrites()
    {
        ScriptedPeer peer(QList<Answer>(5, {{framed("")}}));
        RConExchange exchange;
        QList<bool> areQuick;
        for (int i = 0; i < 5; ++i) {
            QElapsedTimer timer;
            timer.start();
            QVERIFY(awaited(exchange.send(requestTo(peer, "setadmindvar a \"1\""))).isSuccess());
            areQuick.append(timer.elapsed() < 450);
        }
        QCOMPARE(areQuick, QList<bool>({false, false, false, true, true}));
    }

    void slowLine()
    {
        const Answer slow{{framed("done\n"), 600ms}};
        ScriptedPeer peer({slow, slow, slow, slow});
        RConExchange exchange;
        const Reply first = awaited(exchange.send(requestTo(peer)));
        QCOMPARE(first.sends, 2); // nothing was known of the line
        QCOMPARE(first.roundTrip.count(), -1);
        const Reply second = awaited(exchange.send(requestTo(peer)));
        QCOMPARE(second.sends, 1);
        QVERIFY(second.roundTrip >= 590ms);
        QCOMPARE(peer.requests().size(), 3);
    }

    void heldUp()
    {
        ScriptedPeer peer({{{framed("a"), 20ms}}});
        RConExchange exchange;
        QCoro::Task<Reply> sending = exchange.send(requestTo(peer));
        QVERIFY(peer.waitForRequests(1));
        std::this_thread::sleep_for(600ms); // the main loop stands still, and the reply waits in the socket
        const Reply reply = awaited(std::move(sending));
        QVERIFY(reply.isSuccess());
        QCOMPARE(reply.sends, 1);
        QCOMPARE(reply.roundTrip, -1ms); // when it came is not known
        const LinkStats stats = exchange.link().stats;
        QVERIFY(!stats.roundTrip() && stats.lastHeard());
        QCOMPARE(stats.firstWait(), LinkStats::Duration(LinkStats::shortestWait));
    }

    void strangers()
    {
        ScriptedPeer peer({{{framed("false\n"), 0ms, 1, "127.0.0.2"}, {framed("true\n"), 20ms}}, {}, {}, {}});
        RConExchange exchange;
        QCOMPARE(awaited(exchange.send(requestTo(peer))).text, "true\n");
        QCOMPARE(exchange.link().stats.strangers(), 1u);
        ScriptedPeer false_({{{framed("false\n"), 0ms, 1, "127.0.0.2"}}});
        const Reply reply = awaited(exchange.send(requestTo(false_)));
        QCOMPARE(reply.result, RConResultTimeout);
        QCOMPARE(reply.text, RCon::resultStr(RConResultTimeout) + " 127.0.0.2 answered instead.");
    }

    /// Whoever waits for a server to come back learns nothing of its haste, however often he asks.
    void probes()
    {
        ScriptedPeer peer({});
        RConExchange exchange;
        Request probe = requestTo(peer, QStringLiteral("sv_hostname"));
        probe.isBackground = true;
        probe.isProbe = true;
        for (int i = 0; i < 6; ++i)
            QCOMPARE(awaited(exchange.send(probe)).result, RConResultTimeout);
        QVERIFY(!exchange.link().isPaced);
        QCOMPARE(exchange.link().backgroundDelay, std::optional(0ms));
    }

    void badHost()
    {
        RConExchange exchange;
        const Reply reply = awaited(exchange.send(Request{"localhost", 1, "secret", "status", false, false}));
        QCOMPARE(reply.result, RConResultError);
        QCOMPARE(reply.text, "No such host is known.");
    }
};

QTEST_GUILESS_MAIN(RConExchangeTest)
#include "tst_rconexchange.moc"
