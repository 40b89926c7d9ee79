#include "FetchingSession.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace
{

Reply told(const QString &name, const QString &value)
{
    return ScriptedExchange::ok(QStringLiteral("\"%1\" is: \"%2\" in force: \"%2\"\n").arg(name, value));
}

Reply unknown(const QString &name)
{
    return ScriptedExchange::ok(QStringLiteral("Unknown command \"%1\"\n").arg(name));
}

struct Session : FetchingSession {
    explicit Session(const QStringList &unknownNames = {})
    {
        exchange.answer("dvardump", ScriptedExchange::dump());
        for (const QString &name : QStringList{"g_a", "g_b", "g_c", "scr_a"})
            exchange.answer(name, unknownNames.contains(name) ? unknown(name) : told(name, "1"));
        server.setCatalogueLoader(&catalogues);
    }
    void connect()
    {
        awaited(server.connectToHost("192.0.2.1", "50960", "typed"));
        exchange.forgetSent();
    }
    /// The first variable is on its way when it returns.
    void connectAndHold()
    {
        exchange.hold();
        QCoro::Task<> connecting = server.connectToHost("192.0.2.1", "50960", "typed");
        exchange.release();
        awaited(std::move(connecting));
        exchange.forgetSent();
        if (!QTest::qWaitFor([this] { return exchange.keptCount() == 1; }))
            qFatal("nothing is fetched");
    }
    bool isDone()
    {
        return QTest::qWaitFor([this] { return !fetcher.isAsking() && actions.isIdle(); });
    }
};

} // namespace

class DvarFetcherTest : public QObject
{
    Q_OBJECT
private slots:
    void asksForEachOnceAndInTheBackground()
    {
        Session session({"g_b"});
        QSignalSpy finished(&session.fetcher, &DvarFetcher::finished);
        QSignalSpy fetched(&session.server, &KelServer::dvarFetched);
        session.connect();
        QVERIFY(session.server.isAwaited("g_b") && session.server.isAwaited("scr_a"));
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList({"g_a", "g_b", "g_c", "scr_a"}));
        for (const Request &request : session.exchange.requests())
            QVERIFY(request.isBackground && request.password == "secret"); // the server's, not the one typed
        QCOMPARE(session.server.dvarList().value("scr_a"), "1");
        QVERIFY(!session.server.dvarList().contains("g_b") && !session.server.isAwaited("g_b"));
        QVERIFY(session.alerts.shown().isEmpty() && session.server.commandHistory().isEmpty());
        QCOMPARE(finished, (QList<QVariantList>{{1, 4}}));
        QCOMPARE(fetched.size(), 3);
        session.exchange.forgetSent(); // who was unknown comes last now
        session.connect();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList({"g_a", "g_c", "scr_a", "g_b"}));
        session.fetcher.askAgain();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent().last(), "g_b");
        QCOMPARE(session.unknownDvars.of("192.0.2.1:50960", QDateTime::currentDateTime()), QStringList{"g_b"});
    }

    void whatIsLookedAtComesNext()
    {
        Session session;
        session.connectAndHold();
        session.fetcher.prefer({"scr_a", "g_a"});
        while (session.fetcher.isAsking()) {
            QTRY_COMPARE(session.exchange.keptCount(), 1);
            session.exchange.release();
            QTRY_VERIFY(session.exchange.keptCount() == 1 || !session.fetcher.isAsking());
        }
        QCOMPARE(session.exchange.sent(), QStringList({"g_a", "scr_a", "g_b", "g_c"}));
    }

    void anActionGetsInBetween()
    {
        Session session;
        session.exchange.answer("clientkick 3", ScriptedExchange::ok());
        session.connectAndHold();
        session.actions.start(kick(session.server, session.actions));
        while (session.exchange.sent().size() < 3) {
            session.exchange.release();
            QTRY_COMPARE(session.exchange.keptCount(), 1);
        }
        QCOMPARE(session.exchange.sent().indexOf("clientkick 3"), 1);
        session.server.cancelExchange();
        session.server.disconnect();
        QTRY_VERIFY(session.actions.isIdle());
    }

    void asksFourTimesForWhatGetsNoAnswer()
    {
        Session session;
        session.exchange.answer("g_a", ScriptedExchange::failure());
        session.connect();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent().count("g_a"), 4);
        QCOMPARE(session.exchange.sent().size(), 7);
        QVERIFY(!session.server.isAwaited("g_a"));
        QVERIFY(session.unknownDvars.of("192.0.2.1:50960", QDateTime::currentDateTime()).isEmpty()); // it may know it
        QVERIFY(session.fetcher.isUnanswered("g_a") && !session.fetcher.isUnanswered("g_b"));
        session.exchange.answer("g_a", told("g_a", "1"));
        session.exchange.forgetSent();
        session.fetcher.askAgain();
        QVERIFY(session.server.isAwaited("g_a") && !session.fetcher.isUnanswered("g_a"));
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList{"g_a"});
        QCOMPARE(session.server.dvarList().value("g_a"), "1");
    }

    void whatDidNotComeBeforeTheEndIsUnanswered()
    {
        Session session({"g_b"});
        session.connect();
        while (session.fetcher.isAsking() && session.fetcher.missing({"g_b"}) == QStringList{"g_b"})
            awaited(session.fetcher.nextSettled());
        session.server.cancelExchange();
        session.server.disconnect();
        QTRY_VERIFY(session.actions.isIdle());
        QVERIFY(session.fetcher.isUnanswered("scr_a"));
        QVERIFY(!session.fetcher.isUnanswered("g_a") && !session.fetcher.isUnanswered("g_b"));
        session.connect();
        QVERIFY(!session.fetcher.isUnanswered("scr_a") && session.server.isAwaited("scr_a"));
        QVERIFY(session.isDone());
    }

    void tellsWhenItIsKnownWhatIsToCome()
    {
        Session session;
        QStringList missing;
        QObject::connect(&session.fetcher, &DvarFetcher::began, &session.fetcher, [&] {
            missing = session.fetcher.missing({"g_c", "g_b"});
        });
        session.connect();
        QCOMPARE(missing, QStringList({"g_c", "g_b"}));
        QVERIFY(session.isDone());
    }

    void aServerThatDiesMeanwhileIsCalledSilent()
    {
        Session session;
        session.catalogues.settings = QStringList{"g_1", "g_2", "g_3", "g_4", "g_5", "g_6", "g_7"};
        session.connect(); // and nothing is answered any more
        QTRY_COMPARE(session.server.link().kind(), Link::Kind::Silent);
        QTRY_VERIFY(session.actions.isIdle());
        QCOMPARE(session.exchange.sent(), QStringList({"g_1", "g_2", "g_3", "g_4", "g_5", "sv_hostname"}));
        QVERIFY(!session.exchange.requests().last().isBackground);
    }

    void ends_data()
    {
        QTest::addColumn<int>("how");
        QTest::newRow("disconnected") << 0;
        QTest::newRow("refused") << 1;
        QTest::newRow("turn refused") << 2;
        QTest::newRow("another connection") << 3;
        QTest::newRow("silence") << 4;
        QTest::newRow("a server that wants to be left alone") << 5;
    }
    void ends()
    {
        QFETCH(int, how);
        Session session;
        if (how == 1)
            session.exchange.answer("g_a", ScriptedExchange::failure("Invalid Password.", RConResultInvalidPassword));
        session.connectAndHold();
        QCoro::Task<> connecting;
        LinkState rest;
        rest.backgroundDelay = std::nullopt;
        switch (how) {
        case 0:
            session.server.cancelExchange();
            session.server.disconnect();
            break;
        case 1:
            session.exchange.release();
            break;
        case 2:
            session.actions.close();
            session.exchange.release();
            break;
        case 3:
            session.catalogues.settings = QStringList{"other"};
            session.catalogues.gametypes.clear();
            session.exchange.answer("other", told("other", "1"));
            connecting = session.server.connectToHost("192.0.2.2", "50960", "typed");
            session.exchange.release();
            session.exchange.release();
            awaited(std::move(connecting));
            break;
        case 4:
            session.actions.start(say(session.server));
            session.exchange.answer("say", ScriptedExchange::failure());
            session.exchange.release();
            session.exchange.release();
            break;
        default:
            session.exchange.setLink(rest);
            session.exchange.release();
        }
        const QStringList before = session.exchange.sent();
        QTRY_VERIFY(session.actions.isIdle() || session.exchange.keptCount() > 0);
        QVERIFY(!QTest::qWaitFor([&] { return session.exchange.sent().size() > before.size() && how != 3; }, 150));
        QCOMPARE(session.exchange.sent().filter("g_").size(), 1); // none but the one that was on its way
        session.server.cancelExchange();
        session.server.disconnect();
        QTRY_VERIFY(session.actions.isIdle());
    }

    void keepsTheDistanceThatTheServerWants()
    {
        Session session;
        LinkState slow;
        slow.backgroundDelay = 200ms;
        session.exchange.setLink(slow);
        session.connect();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(session.isDone());
        QVERIFY2(timer.elapsed() >= 750, QByteArray::number(timer.elapsed()));
    }

    void tellsOfNewValuesNotMoreOftenThanFiveTimesASecond()
    {
        Session session;
        session.connect();
        QSignalSpy changed(&session.server, &KelServer::dvarListChanged);
        QVERIFY(session.isDone());
        QTRY_COMPARE(changed.size(), 1);
    }

    void waitersResume()
    {
        Session session;
        session.connect();
        QCOMPARE(session.fetcher.missing({"g_b", "nothing"}), QStringList{"g_b"});
        while (!session.fetcher.missing({"g_b"}).isEmpty())
            awaited(session.fetcher.nextSettled());
        QVERIFY(session.server.dvarList().contains("g_b"));
        session.exchange.hold();
        QCoro::Task<> woken = session.fetcher.nextSettled();
        session.fetcher.wakeWaiting();
        awaited(std::move(woken)); // nothing has been settled
        QCoro::Task<> waiting = session.fetcher.nextSettled();
        session.server.cancelExchange();
        session.server.disconnect();
        awaited(std::move(waiting));
        QTRY_VERIFY(session.actions.isIdle());
    }

    void remembersForAWeek()
    {
        Session session;
        const QDateTime now = QDateTime::currentDateTime();
        session.unknownDvars.remember("a:1", {"x"}, now.addDays(-6));
        session.unknownDvars.remember("b:1", {"y"}, now);
        QCOMPARE(session.unknownDvars.of("a:1", now), QStringList{"x"});
        QCOMPARE(session.unknownDvars.of("a:1", now.addDays(2)), QStringList());
        QCOMPARE(session.unknownDvars.of("b:1", now.addDays(2)), QStringList{"y"});
        QCOMPARE(session.unknownDvars.of("b:1", now.addDays(-2)), QStringList()); // the clock was wrong once
        session.unknownDvars.forget("b:1");
        QCOMPARE(session.unknownDvars.of("b:1", now), QStringList());
    }

private:
    static QCoro::Task<> kick(KelServer &server, ActionQueue &actions)
    {
        const ActionQueue::Turn turn = co_await actions.turn();
        const QString line = QStringLiteral("clientkick 3");
        const Reply reply = co_await server.sendCommand(line);
        Q_UNUSED(reply)
    }
    static QCoro::Task<> say(KelServer &server)
    {
        const QString line = QStringLiteral("say");
        const Reply reply = co_await server.sendCommand(line);
        Q_UNUSED(reply)
    }
};

QTEST_GUILESS_MAIN(DvarFetcherTest)
#include "tst_dvarfetcher.moc"
