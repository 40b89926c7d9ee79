#include "DataColumns.h"
#include "FetchingSession.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

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
        for (const QString &name : QStringList{"h_a", "h_b", "h_c", "rule_a"})
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
        Session session({"h_b"});
        QSignalSpy finished(&session.fetcher, &DvarFetcher::finished);
        QSignalSpy changed(&session.server, &KelServer::dvarChanged);
        QStringList missing;
        QObject::connect(&session.fetcher, &DvarFetcher::began, &session.fetcher, [&] {
            missing = session.fetcher.missing({"h_c", "other", "h_b"});
        });
        session.connect();
        QCOMPARE(missing, QStringList({"h_c", "h_b"}));
        QVERIFY(session.fetcher.isAwaited("h_b") && session.fetcher.isAwaited("rule_a"));
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList({"h_a", "h_b", "h_c", "rule_a"}));
        for (const Request &request : session.exchange.requests())
            QVERIFY(request.isBackground && request.password == "secret"); // the server's, not the one typed
        QCOMPARE(session.server.dvarList().value("rule_a"), "1");
        QVERIFY(!session.server.dvarList().contains("h_b") && !session.fetcher.isAwaited("h_b"));
        QVERIFY(session.alerts.shown().isEmpty() && session.server.console().commandHistory().isEmpty());
        QCOMPARE(finished, (QList<QVariantList>{{1, 4}}));
        QCOMPARE(changed, QList<QVariantList>({{"h_a"}, {"h_c"}, {"rule_a"}}));
        session.exchange.forgetSent(); // who was unknown comes last now
        session.connect();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList({"h_a", "h_c", "rule_a", "h_b"}));
        session.fetcher.askAgain();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent().last(), "h_b");
        QCOMPARE(session.unknownDvars.of("192.0.2.1:50960", QDateTime::currentDateTime()), QStringList{"h_b"});
    }

    void asksFourTimesForWhatGetsNoAnswer()
    {
        Session session;
        session.exchange.answer("h_a", ScriptedExchange::failure());
        session.connect();
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent().count("h_a"), 4);
        QCOMPARE(session.exchange.sent().size(), 7);
        QVERIFY(!session.fetcher.isAwaited("h_a"));
        QVERIFY(session.unknownDvars.of("192.0.2.1:50960", QDateTime::currentDateTime()).isEmpty()); // it may know it
        QVERIFY(session.fetcher.isUnanswered("h_a") && !session.fetcher.isUnanswered("h_b"));
        session.exchange.answer("h_a", told("h_a", "1"));
        session.exchange.forgetSent();
        session.fetcher.askAgain();
        QVERIFY(session.fetcher.isAwaited("h_a") && !session.fetcher.isUnanswered("h_a"));
        QVERIFY(session.isDone());
        QCOMPARE(session.exchange.sent(), QStringList{"h_a"});
        QCOMPARE(session.server.dvarList().value("h_a"), "1");
    }

    void aServerThatDiesMeanwhileIsCalledSilent()
    {
        Session session;
        session.catalogues.settings = QStringList{"h_1", "h_2", "h_3", "h_4", "h_5", "h_6", "h_7"};
        session.connect(); // and nothing is answered any more
        QTRY_COMPARE(session.server.link().kind(), Link::Kind::Silent);
        QTRY_VERIFY(session.actions.isIdle());
        QCOMPARE(session.exchange.sent(), QStringList({"h_1", "h_2", "h_3", "h_4", "h_5", "sv_hostname"}));
        QVERIFY(!session.exchange.requests().last().isBackground);
    }

    void rests_data()
    {
        const auto row = dataColumns<Reply, bool, bool>("reply", "isClosed", "mayAsk");
        // reply: to the variable that is on its way
        const Reply one = told("h_a", "1");
        const Reply refused = ScriptedExchange::failure("Invalid Password.", RConResultInvalidPassword);
        row("the password is refused", refused, false, true);
        row("no turn is given any more", one, true, true);
        row("the server wants to be left alone", one, false, false);
    }
    void rests()
    {
        QFETCH(Reply, reply);
        QFETCH(bool, isClosed);
        QFETCH(bool, mayAsk);
        Session session;
        session.exchange.answer("h_a", reply);
        session.connectAndHold();
        if (isClosed)
            session.actions.close();
        LinkState line;
        if (!mayAsk)
            line.backgroundDelay = std::nullopt;
        session.exchange.setLink(line);
        while (session.exchange.keptCount() > 0)
            session.exchange.release();
        QTRY_VERIFY(session.actions.isIdle());
        QVERIFY(!QTest::qWaitFor([&] { return session.exchange.keptCount() > 0; }, 150));
        QCOMPARE(session.exchange.sent().filter("h_"), QStringList{"h_a"}); // the one that was on its way
        QVERIFY(session.fetcher.isAsking());
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
};

QTEST_GUILESS_MAIN(DvarFetcherTest)
#include "tst_dvarfetcher.moc"
