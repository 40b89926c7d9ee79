#include "DataColumns.h"
#include "FetchingSession.h"
#include "Reconnecting.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

namespace
{

/// Its name stands for another address from now on.
class MovedHost final : public HostLookup
{
public:
    QCoro::Task<HostAddresses> find(QString) override
    {
        ++times;
        co_return HostAddresses{{"192.0.2.9"}, {}, false};
    }
    void cancel() override {}

    int times = 0;
};

struct Session : FetchingSession {
    Session()
    {
        exchange.answer("dvardump", ScriptedExchange::dump("sv_ranked \"0\"\nplaylist_enabled \"0\"\n"
                                                           "h_a \"1\"\nh_b \"1\"\nh_c \"1\"\nrule_a \"1\"\n"));
        server.setCatalogueLoader(&catalogues);
        awaited(server.connectToHost("192.0.2.1", "50960", "typed"));
        server.console().addToCommandHistory("before");
    }
    ~Session()
    {
        server.cancelExchange();
        server.disconnect();
        if (!QTest::qWaitFor([this] { return actions.isIdle(); }))
            qFatal("an action does not end");
    }
    void fallSilent()
    {
        exchange.forget("dvardump");
        awaited(server.sendCommand("status"));
        exchange.forgetSent();
    }
    bool isIdle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); });
    }

    Reconnecting reconnecting{server, actions, alerts, fetcher};
};

QCoro::Task<> rename(Session &session)
{
    const ActionQueue::Turn turn = co_await session.actions.turn();
    co_await session.server.setDvar("sv_hostname", "new");
}

} // namespace

class ReconnectingTest : public QObject
{
    Q_OBJECT
private slots:
    void aNewNameThatWasJustGivenIsNoOtherServer()
    {
        Session session;
        QSignalSpy back(&session.reconnecting, &Reconnecting::cameBack);
        session.fallSilent();
        session.exchange.answer("setadmindvar sv_hostname \"new\"", ScriptedExchange::ok());
        Reply dump = ScriptedExchange::dump();
        dump.text.replace("\"h\"", "\"new\"");
        session.exchange.answer("dvardump", dump);
        session.actions.start(rename(session));
        QTRY_COMPARE(back.size(), 1);
        QVERIFY(session.alerts.shown().isEmpty());
    }

    void whatTheServerNoLongerKnowsIsForgotten()
    {
        Session session;
        QSignalSpy back(&session.reconnecting, &Reconnecting::cameBack);
        session.fallSilent();
        session.exchange.answer("sv_hostname", ScriptedExchange::ok("\"sv_hostname\" is: \"h\" in force: \"h\"\n"));
        session.exchange.answer("dvardump", ScriptedExchange::dump("sv_ranked \"0\"\nplaylist_enabled \"1\"\n"));
        session.exchange.answerEverything(ScriptedExchange::ok("Unknown command\n"));
        session.reconnecting.tryNow();
        QVERIFY(back.wait());
        QTRY_VERIFY(!session.fetcher.isAsking() && session.actions.isIdle());
        QStringList asked = session.exchange.sent().mid(2); // those which the dump lacks now
        asked.sort();
        QCOMPARE(asked, QStringList({"h_a", "h_b", "h_c", "rule_a"}));
        QCOMPARE(session.server.tabSet(), TabSet::UnrankedPlaylists);
        QCOMPARE(session.catalogues.calls.count("load"), 2); // those of another mode
        QCOMPARE(session.server.console().commandHistory(), QStringList({"before", "status"}));
        QVERIFY(session.alerts.shown().isEmpty() && session.server.link().mayAskByItself());
        QVERIFY(!session.server.dvarList().contains("h_a"));
        QCOMPARE(session.server.dvarList().value("sv_ranked"), "0"); // the mode would be another one without it
        QVERIFY(session.server.dvarList().contains("rcon_password"));
    }

    void anotherServerInItsPlace_data()
    {
        const auto row = dataColumns<int>("answer");
        row("go on", 0);
        row("disconnect", 1);
    }
    void anotherServerInItsPlace()
    {
        QFETCH(int, answer);
        Session session;
        session.alerts.answerWith(answer);
        QSignalSpy back(&session.reconnecting, &Reconnecting::cameBack);
        QSignalSpy unwanted(&session.reconnecting, &Reconnecting::disconnectWanted);
        session.fallSilent();
        Reply other = ScriptedExchange::dump();
        other.text.replace("sv_hostname \"h\"", "sv_hostname \"Another\"");
        session.exchange.answer("dvardump", other);
        session.exchange.answer("sv_hostname",
                                ScriptedExchange::ok("\"sv_hostname\" is: \"Another\" now: \"Another\"\n"));
        session.reconnecting.tryNow();
        QTRY_COMPARE(back.size() + unwanted.size(), 1);
        QCOMPARE(unwanted.size(), answer);
        QCOMPARE(session.alerts.titles(), QStringList{"Another Server Answers"});
        QCOMPARE(session.server.dvarList().value("sv_hostname"), answer == 0 ? "Another" : "h");
        QVERIFY(session.isIdle());
    }

    void aServerThatMovedIsLookedUpAgain()
    {
        MovedHost lookup;
        Session session;
        session.server.setHostLookup(&lookup);
        session.fallSilent();
        for (int probe = 0; probe < 4; ++probe) {
            session.reconnecting.tryNow();
            QVERIFY(session.isIdle());
        }
        QStringList addresses;
        for (const Request &request : session.exchange.requests())
            addresses.append(request.address);
        QCOMPARE(addresses.mid(0, 3), QStringList(3, "192.0.2.1"));
        QCOMPARE(addresses.value(3), "192.0.2.9");
        QCOMPARE(lookup.times, 1);
    }
};

QTEST_GUILESS_MAIN(ReconnectingTest)
#include "tst_reconnecting.moc"
