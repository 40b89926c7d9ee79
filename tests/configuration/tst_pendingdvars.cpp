#include "DataColumns.h"
#include "FetchingSession.h"
#include "PendingDvars.h"
#include "RecordedProgress.h"
#include "Wait.h"

#include <QTest>

#include <optional>

using End = PendingDvars::End;

namespace
{

/// A server that tells h_a, h_b and rule_a when it is asked, and does not know h_c.
struct Session : FetchingSession {
    Session()
    {
        exchange.answer("dvardump", ScriptedExchange::dump());
        for (const char *name : {"h_a", "h_b", "rule_a"})
            exchange.answer(name, ScriptedExchange::ok(QString("\"%1\" is: \"1\" in force: \"1\"\n").arg(name)));
        exchange.answer("h_c", ScriptedExchange::ok("Unknown command \"h_c\"\n"));
        server.setCatalogueLoader(&catalogues);
    }
    ~Session()
    {
        server.disconnect();
        while (!actions.isIdle()) {
            server.cancelExchange();
            QCoreApplication::processEvents();
        }
    }
    static QCoro::Task<> connectWithTurn(Session *in, QString host)
    {
        const ActionQueue::Turn turn = co_await in->actions.turn();
        co_await in->server.connectToHost(host, "50960", "typed");
    }
    static QCoro::Task<> finish(Session *in, QStringList names) { in->end = co_await in->pending.finish(names); }
    static QCoro::Task<> kick(Session *in)
    {
        const ActionQueue::Turn turn = co_await in->actions.turn();
        const Reply reply = co_await in->server.sendCommand("clientkick 3");
        Q_UNUSED(reply)
    }
    /// The first variable is on its way when it returns.
    void connectAndHold()
    {
        exchange.hold();
        actions.start(connectWithTurn(this, "192.0.2.1"));
        exchange.release();
        QTRY_COMPARE(exchange.keptCount(), 1);
        QTRY_COMPARE(exchange.sent(), QStringList({"dvardump", "h_a"}));
        exchange.forgetSent();
    }
    /// Gives every reply until the waiting has ended.
    void releaseUntilItEnds()
    {
        while (!end) {
            QTRY_VERIFY(end || exchange.keptCount() > 0);
            if (!end)
                exchange.release();
        }
    }

    RecordedProgress progress;
    PendingDvars pending{server, actions, fetcher, progress};
    std::optional<End> end;
};

} // namespace

class PendingDvarsTest : public QObject
{
    Q_OBJECT
    using Steps = QList<std::pair<qsizetype, qsizetype>>;

private slots:
    void waitsForWhatIsNeededAndLetsActionsInBetween()
    {
        Session session;
        session.exchange.answer("clientkick 3", ScriptedExchange::ok());
        session.connectAndHold();
        session.actions.start(Session::finish(&session, {"rule_a", "h_b", "h_b", "of no catalogue"}));
        QVERIFY(session.progress.isShown() && session.pending.isUnderWay());
        QCOMPARE(session.progress.title(), QString("Asking for settings…"));
        QCOMPARE(session.progress.steps(), (Steps{{0, 2}}));
        session.actions.start(Session::kick(&session));
        session.releaseUntilItEnds();
        QCOMPARE(session.end, End::Settled);
        QVERIFY(!session.progress.isShown() && !session.pending.isUnderWay());
        QCOMPARE(session.progress.steps(), (Steps{{0, 2}, {0, 2}, {1, 2}})); // h_a was on its way before
        QCOMPARE(session.exchange.sent().mid(0, 3), QStringList({"clientkick 3", "rule_a", "h_b"}));
        QVERIFY(!session.server.dvarList().contains("h_c") && session.fetcher.isAwaited("h_c"));
    }
    void ends_data()
    {
        const auto row = dataColumns<End>("end");
        row("cancelled", End::Cancelled);
        row("closing while the server is silent", End::CalledOff);
        row("password refused", End::Settled);
    }
    void ends()
    {
        QFETCH(End, end);
        const QByteArray how = QTest::currentDataTag();
        Session session;
        if (how == "password refused")
            session.exchange.answer("h_a", ScriptedExchange::failure("Invalid Password.", RConResultInvalidPassword));
        session.connectAndHold();
        session.actions.start(Session::finish(&session, {"h_b"}));
        if (how.endsWith("silent")) {
            session.actions.start(Session::kick(&session)); // gets no answer
            session.exchange.release();
            QTRY_COMPARE(session.exchange.sent(), QStringList{"clientkick 3"});
            session.exchange.release();
            QTRY_VERIFY(session.server.link().kind() == Link::Kind::Silent);
            QCOMPARE(session.exchange.keptCount(), 0);
        }
        QVERIFY(session.progress.isShown());
        if (how == "cancelled")
            session.progress.cancel();
        else if (how.startsWith("closing"))
            session.actions.close();
        if (how == "password refused")
            session.exchange.release();
        QTRY_COMPARE(session.end, std::optional(end)); // though the reply to h_a, or h_b, is still kept
        QVERIFY(!session.progress.isShown() && !session.pending.isUnderWay());
        QVERIFY(session.alerts.shown().isEmpty());
        if (how == "password refused")
            QCOMPARE(session.pending.unanswered({"h_b"}), QStringList{"h_b"});
    }

    void waitsForTheEndOfAConnect()
    {
        Session session;
        QString dump = ScriptedExchange::dump().text;
        dump.remove("S sv_hostname \"h\"\n");
        session.exchange.answer("dvardump", ScriptedExchange::ok(dump));
        session.exchange.answer("sv_hostname", ScriptedExchange::ok("\"sv_hostname\" is: \"h\" in force: \"h\"\n"));
        session.exchange.hold();
        session.actions.start(Session::connectWithTurn(&session, "192.0.2.1"));
        session.exchange.release();
        QTRY_COMPARE(session.exchange.sent(), QStringList({"dvardump", "sv_hostname"}));
        QVERIFY(session.server.isConnected() && !session.fetcher.isAsking());
        session.actions.start(Session::finish(&session, {"h_b"}));
        session.exchange.release();
        QTRY_COMPARE(session.progress.steps(), (Steps{{0, 1}}));
        session.releaseUntilItEnds();
        QCOMPARE(session.end, End::Settled);
        QVERIFY(session.server.dvarList().contains("h_b"));
    }
};

QTEST_GUILESS_MAIN(PendingDvarsTest)
#include "tst_pendingdvars.moc"
