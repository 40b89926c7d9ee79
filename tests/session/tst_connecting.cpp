#include "DataColumns.h"
#include "FetchingSession.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

static const QString misspelt = "Unable to fine all required dvars!\n\n- The server is not communicating properly.";

const auto dump = &ScriptedExchange::dump;
const auto ok = &ScriptedExchange::ok;

/// Knows what every name stands for.
class KnownHosts final : public HostLookup
{
public:
    QCoro::Task<HostAddresses> find(QString) override
    {
        const QString error = addresses.isEmpty() ? QStringLiteral("No such host is known.") : QString();
        co_return HostAddresses{addresses, error, false};
    }
    void cancel() override {}

    QStringList addresses;
};

/// A session that knows no server yet.
struct Session {
    explicit Session(const Reply &dumpReply = ScriptedExchange::dump()) : exchange({{"dvardump", dumpReply}}) {}

    QCoro::Task<> startConnecting(const QString &host = "192.0.2.1", const QString &port = "50960")
    {
        return server.connectToHost(host, port, "typed");
    }
    void connect(const QString &host = "192.0.2.1", const QString &port = "50960")
    {
        awaited(startConnecting(host, port));
    }

    ScriptedExchange exchange;
    RecordedAlerts alerts;
    FewCatalogues catalogues;
    KelServer server{exchange, alerts};
};

class ConnectingTest : public QObject
{
    Q_OBJECT
private slots:
    void readsDumpLines()
    {
        Session session;
        for (const char *line : {"  S  S\tx \"a\" \"b\" default", "y \"a\\\"b\"", "x \"a", "  \"a\""})
            session.server.addDvarLine(QString(line));
        const DvarTable expected{{"S\tx", "a"}, {"y", "a\\"}}; // a tab is part of the name, and nothing is unescaped
        QCOMPARE(session.server.dvarList(), expected);
    }

    void takesNoMoreVariablesThanAServerHas()
    {
        Session session;
        for (qsizetype i = 0; i < mostDumpedDvars; ++i)
            session.server.addDvarLine(QStringLiteral("a%1 \"1\"").arg(i));
        session.server.addDvarLine(u"b \"1\"");
        session.server.addDvarLine(u"a7 \"2\"");
        QCOMPARE(session.server.dvarList().size(), mostDumpedDvars);
        QCOMPARE(session.server.dvarList().value("a7"), "2");
    }

    void sendsNothingToWhereItCannot()
    {
        Session session;
        QList<RecordedAlerts::Shown> told;
        for (const QString port : {"", "abc", "0", "65536", "4294996256"}) {
            awaited(session.server.connectToHost("127.0.0.1", port, "typed"));
            told.append({"Invalid Port", "The value entered '" + port + "' is invalid", {}});
        }
        awaited(session.server.connectToHost("127.0.0.1", "50960", u"a\u2019"_qs));
        told.append({"Command Send Error", "The game cannot hold a character of this password. Nothing was sent.", {}});
        QCOMPARE(session.alerts.shown(), told);
        QVERIFY(session.exchange.sent().isEmpty() && !session.server.isConnected());
    }

    void afterEachFailure_data()
    {
        const auto row =
            dataColumns<Reply, Reply, QStringList, QStringList>("dumpReply", "singleReply", "titles", "texts");
        const QString unknown = "The dvar '%1' was not recognized by the server";
        const Reply none = ok("Unknown command \"x\"");
        const QStringList send{"Command Send Error"};
        const QStringList server{"Server Communication Error"};
        row("no answer to the dump", ScriptedExchange::failure("gone"), {}, send, {"gone"});
        row("refused", ScriptedExchange::failure("no", RConResultInvalidPassword), {}, send, {"no"});
        row("all missing ones are asked for", dump({}), none, QStringList{"Unknown dvar", "Unknown dvar"} + server,
            {unknown.arg("sv_ranked"), unknown.arg("playlist_enabled"), misspelt});
        row("no answer to a single one", dump("sv_ranked \"0\"\n"), ScriptedExchange::failure("gone"), send + server,
            {"gone", misspelt});
    }
    void afterEachFailure()
    {
        QFETCH(Reply, dumpReply);
        QFETCH(Reply, singleReply);
        Session session(dumpReply);
        session.exchange.answerEverything(singleReply);
        session.server.console().addToCommandHistory("old");
        QSignalSpy refused(&session.server, &KelServer::passwordRefused);
        session.connect();
        QCOMPARE(refused.size(), dumpReply.result == RConResultInvalidPassword ? 1 : 0);
        QTEST(session.alerts.titles(), "titles");
        QTEST(session.alerts.texts(), "texts");
        QCOMPARE(session.server.isConnected(), dumpReply.isSuccess());
        QVERIFY(session.server.console().commandHistory().isEmpty());
        QVERIFY(session.server.tabSet() == TabSet::None);
    }

    void isBusyOnlyWhileTheServerIsAsked()
    {
        Session session;
        session.exchange.answer("dvardump", ScriptedExchange::failure());
        session.alerts.hold();
        QSignalSpy busy(&session.server.link(), &Link::busyChanged);
        QCoro::Task<> connecting = session.startConnecting();
        QTRY_COMPARE(session.alerts.openCount(), 1);
        QCOMPARE(busy, QList<QVariantList>({{true}, {false}}));
        session.alerts.dismiss();
        awaited(std::move(connecting));
    }

    void decidesTheMode_data()
    {
        const auto row = dataColumns<QString, QString, TabSet>("ranked", "playlists", "tabs");
        row("2 is ranked", "2", "0", TabSet::Ranked);
        row("4 is ranked, playlists do not matter", "4", "1", TabSet::Ranked);
        row("0 is not", "0", "1", TabSet::UnrankedPlaylists);
        row("almost 1", "0", "01", TabSet::UnrankedMaps);
    }
    void decidesTheMode()
    {
        QFETCH(QString, ranked);
        QFETCH(QString, playlists);
        QFETCH(TabSet, tabs);
        Session session(dump(QString("sv_ranked \"%1\"\nplaylist_enabled \"%2\"\n").arg(ranked, playlists)));
        session.connect();
        QCOMPARE(session.server.isRanked(), tabs == TabSet::Ranked);
        QCOMPARE(session.server.tabSet(), tabs);
        QVERIFY(session.alerts.shown().isEmpty());
    }

    void asksForRequiredOnesThatTheDumpLacks()
    {
        Session session(dump("playlist_enabled \"0\"\n"));
        session.exchange.answer("sv_ranked",
                                ok(QString("\"sv_ranked\" is: \"0\" now: \"4\"").repeated(2))); // doubled on its way
        session.server.setCatalogueLoader(&session.catalogues);
        QSignalSpy connected(&session.server, &KelServer::didConnect);
        session.connect();
        QCOMPARE(session.exchange.sent(), QStringList({"dvardump", "sv_ranked"})); // catalogued ones can wait
        for (const Request &request : session.exchange.requests())
            QCOMPARE(request.password, "typed");
        QVERIFY(session.alerts.shown().isEmpty() && session.server.isRanked());
        QCOMPARE(session.server.cataloguedDvars(), session.catalogues.settings);
        QCOMPARE(session.catalogues.calls, QStringList({"load", "update"}));
        QCOMPARE(connected.size(), 1);
    }

    void asksOnceMoreForADumpThatLacksAPart()
    {
        Reply part = dump("playlist_enabled \"0\"\nsv_ranked \"0\"\n");
        part.mayBeIncomplete = true;
        Session session(part);
        session.connect();
        QCOMPARE(session.exchange.sent(), QStringList({"dvardump", "dvardump"}));
        session.exchange.forgetSent();
        session.connect();
        QCOMPARE(session.exchange.sent(), QStringList{"dvardump"}); // it counts in a way of its own
        QVERIFY(session.server.isConnected());
    }

    /// That the next one is asked after silence is looked at from outside, in tests/wire.
    void asksNoOtherAddressAfterARefusal()
    {
        Session session;
        session.exchange.answerFrom("192.0.2.4",
                                    ScriptedExchange::failure("Invalid Password.", RConResultInvalidPassword));
        KnownHosts lookup;
        session.server.setHostLookup(&lookup);
        session.connect("Play.example.org");
        lookup.addresses = QStringList{"192.0.2.4", "192.0.2.2"};
        session.connect("Play.example.org");
        QCOMPARE(session.exchange.requests().size(), 1);
        QCOMPARE(session.alerts.texts(), QStringList({"No such host is known.", "Invalid Password."}));
        QVERIFY(!session.server.isConnected());
        lookup.addresses.removeFirst();
        session.connect("Play.example.org");
        QCOMPARE(session.exchange.requests().last().host, "Play.example.org");
        QCOMPARE(session.server.serverKey(), "play.example.org:50960");
    }

    void connectingAnewForgetsTheOldServer()
    {
        Session session;
        session.connect();
        QSignalSpy cleared(&session.server.console(), &Console::transcriptCleared);
        session.connect("192.0.2.2", "no port");
        QVERIFY(session.server.dvarList().isEmpty());
        QCOMPARE(cleared.size(), 1);
        QVERIFY(session.server.isConnected()); // only disconnect() ends a connection
        QCOMPARE(session.server.host(), "192.0.2.1");
    }
};

QTEST_GUILESS_MAIN(ConnectingTest)
#include "tst_connecting.moc"
