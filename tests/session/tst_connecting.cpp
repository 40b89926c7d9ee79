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
    void readsDumpLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<DvarTable>("expected");
        const auto row = [](const char *title, const char *line, const DvarTable &expected = {}) {
            QTest::newRow(title) << QString(line) << expected;
        };
        row("a flag and blanks before", "  S  sv_ranked   \"2\"", {{"sv_ranked", "2"}});
        row("no blank before the value", "name\"v\"", {{"name", "v"}});
        row("more after the value", "x \"a\" \"b\" default", {{"x", "a"}});
        row("no unescaping", "x \"a\\\"b\"", {{"x", "a\\"}});
        row("a tab is part of the name", "S\tx \"a\"", {{"S\tx", "a"}});
        row("empty value", "x \"\"");
        row("no quotes", "255 total dvars");
        row("one quote", "x \"a");
        row("no name", "  \"a\"");
    }
    void readsDumpLines()
    {
        QFETCH(QString, line);
        Session session;
        session.server.addDvarLine(line);
        QTEST(session.server.dvarList(), "expected");
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

    void sendsNothingToWhereItCannot_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("password");
        for (const char *port : {"", "abc", "0", "65536", "4294996256"})
            QTest::newRow(port) << port << "typed";
        for (const QString &password : {u"a\u2019"_qs, u"\u0436"_qs})
            QTest::newRow(qPrintable(password)) << "50960" << password;
    }
    void sendsNothingToWhereItCannot()
    {
        QFETCH(QString, port);
        QFETCH(QString, password);
        Session session;
        awaited(session.server.connectToHost("127.0.0.1", port, password));
        RecordedAlerts::Shown told{"Invalid Port", "The value entered '" + port + "' is invalid", {}};
        if (password != "typed")
            told = {"Command Send Error", "The game cannot hold a character of this password. Nothing was sent.", {}};
        QCOMPARE(session.alerts.shown(), QList{told});
        QVERIFY(session.exchange.sent().isEmpty() && !session.server.isConnected());
    }

    void afterEachFailure_data()
    {
        QTest::addColumn<Reply>("dumpReply");
        QTest::addColumn<QString>("known"); // of the required ones, when it is asked for by name
        QTest::addColumn<Reply>("singleReply");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("texts");
        const auto row = [](const char *name, const Reply &dumpReply, const char *known, const Reply &singleReply,
                            const QStringList &titles, const QStringList &texts) {
            QTest::newRow(name) << dumpReply << QString(known) << singleReply << titles << texts;
        };
        const QString unknown = "The dvar '%1' was not recognized by the server";
        const Reply none = ok("Unknown command \"x\"");
        const QStringList send{"Command Send Error"};
        const QStringList server{"Server Communication Error"};
        row("no answer to the dump", ScriptedExchange::failure("gone"), "", {}, send, {"gone"});
        row("refused", ScriptedExchange::failure("no", RConResultInvalidPassword), "", {}, send, {"no"});
        row("two fields instead of three", dump("playlist_enabled \"0\"\n"), "", ok("\"sv_ranked\" is: \"0\""), server,
            {misspelt});
        row("all missing ones are asked for", dump({}), "", none, QStringList{"Unknown dvar", "Unknown dvar"} + server,
            {unknown.arg("sv_ranked"), unknown.arg("playlist_enabled"), misspelt});
        row("only the first is missing", dump({}), "playlist_enabled", none, QStringList{"Unknown dvar"} + server,
            {unknown.arg("sv_ranked"), misspelt});
        row("only the last is missing", dump({}), "sv_ranked", none, QStringList{"Unknown dvar"} + server,
            {unknown.arg("playlist_enabled"), misspelt});
        row("no answer to a single one", dump("sv_ranked \"0\"\n"), "", ScriptedExchange::failure("gone"),
            send + server, {"gone", misspelt});
    }
    void afterEachFailure()
    {
        QFETCH(Reply, dumpReply);
        QFETCH(QString, known);
        QFETCH(Reply, singleReply);
        Session session(dumpReply);
        session.exchange.answerEverything(singleReply);
        if (!known.isEmpty())
            session.exchange.answer(known, ok("\"" + known + "\" is: \"0\" default: \"0\""));
        session.server.console().addToCommandHistory("old");
        session.alerts.hold();
        QSignalSpy refused(&session.server, &KelServer::passwordRefused);
        QCoro::Task<> connecting = session.startConnecting();
        QTRY_COMPARE(session.alerts.openCount(), 1);
        QCOMPARE(refused.size(), dumpReply.result == RConResultInvalidPassword ? 1 : 0); // before its alert
        const auto hasEnded = [&session, &connecting] {
            while (session.alerts.openCount() > 0)
                session.alerts.dismiss();
            return connecting.isReady();
        };
        QTRY_VERIFY(hasEnded());
        QTEST(session.alerts.titles(), "titles");
        QTEST(session.alerts.texts(), "texts");
        QCOMPARE(session.server.isConnected(), dumpReply.isSuccess());
        QVERIFY(session.server.console().commandHistory().isEmpty());
        QVERIFY(session.server.tabSet() == TabSet::None);
    }

    void isBusyOnlyWhileTheServerIsAsked()
    {
        Session session(dump("playlist_enabled \"0\"\n"));
        session.exchange.answerEverything(ok("Unknown command \"x\""));
        session.exchange.hold();
        session.alerts.hold();
        QSignalSpy busy(&session.server.link(), &Link::busyChanged);
        QCoro::Task<> connecting = session.startConnecting();
        QCOMPARE(busy, QList<QVariantList>({{true}}));
        session.exchange.release();
        QTRY_COMPARE(session.exchange.keptCount(), 1);
        QCOMPARE(busy, QList<QVariantList>({{true}, {false}, {true}}));
        session.exchange.release();
        QTRY_COMPARE(session.alerts.openCount(), 1); // of an unknown variable
        QCOMPARE(busy, QList<QVariantList>({{true}, {false}, {true}, {false}}));
        session.alerts.dismiss();
        QTRY_COMPARE(session.alerts.openCount(), 1);
        session.alerts.dismiss();
        awaited(std::move(connecting));
    }

    void decidesTheMode_data()
    {
        QTest::addColumn<QString>("ranked");
        QTest::addColumn<QString>("playlists");
        QTest::addColumn<TabSet>("tabs");
        const auto row = [](const char *title, const char *ranked, const char *playlists, TabSet tabs) {
            QTest::newRow(title) << QString(ranked) << QString(playlists) << tabs;
        };
        row("2 is ranked", "2", "0", TabSet::Ranked);
        row("4 is ranked, playlists do not matter", "4", "1", TabSet::Ranked);
        row("1 is not", "1", "0", TabSet::UnrankedMaps);
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
        QSignalSpy arranged(&session.server, &KelServer::tabSetChanged);
        session.server.setupTabsForPlaylistsAndRanked();
        QVERIFY(arranged.isEmpty()); // already right
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

    void triesAddressesOneAfterTheOther_data()
    {
        QTest::addColumn<QStringList>("addresses");
        QTest::addColumn<QStringList>("asked");
        QTest::addColumn<QStringList>("alerts");
        const auto row = [](const char *name, const QStringList &addresses, const QStringList &asked,
                            const QStringList &alerts) {
            QTest::newRow(name) << addresses << asked << alerts;
        };
        const QStringList silent{"192.0.2.1", "192.0.2.3"};
        row("the second answers", {"192.0.2.1", "192.0.2.2", "192.0.2.3"}, {"192.0.2.1", "192.0.2.2"}, {});
        row("the first refuses", {"192.0.2.4", "192.0.2.2"}, {"192.0.2.4"}, {"Invalid Password."});
        row("none answers", silent, silent, {"no answer"});
        row("there is none", {}, {}, {"No such host is known."});
    }
    void triesAddressesOneAfterTheOther()
    {
        QFETCH(QStringList, addresses);
        Session session;
        session.exchange.answerFrom("192.0.2.1", ScriptedExchange::failure());
        session.exchange.answerFrom("192.0.2.3", ScriptedExchange::failure());
        session.exchange.answerFrom("192.0.2.4",
                                    ScriptedExchange::failure("Invalid Password.", RConResultInvalidPassword));
        KnownHosts lookup;
        lookup.addresses = addresses;
        session.server.setHostLookup(&lookup);
        session.connect("Play.example.org");
        QStringList tried;
        for (const Request &request : session.exchange.requests()) {
            QCOMPARE(request.host, "Play.example.org");
            tried.append(request.address);
        }
        QTEST(tried, "asked");
        QTEST(session.alerts.texts(), "alerts");
        QCOMPARE(session.server.isConnected(), session.alerts.shown().isEmpty());
        QCOMPARE(session.server.serverKey(), session.server.isConnected() ? "play.example.org:50960" : ":0");
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

    void canBeCalledOffAtEveryStep_data()
    {
        QTest::addColumn<int>("answered");
        QTest::newRow("during the dump") << 0;
        QTest::newRow("during a required one") << 1;
    }
    void canBeCalledOffAtEveryStep()
    {
        QFETCH(int, answered);
        Session session(dump("playlist_enabled \"0\"\n"));
        session.exchange.answer("sv_ranked", ok("\"sv_ranked\" is: \"0\" default: \"0\""));
        session.exchange.hold();
        session.server.setCatalogueLoader(&session.catalogues);
        QCoro::Task<> connecting = session.startConnecting();
        for (int i = 0; i < answered; ++i) {
            session.exchange.release();
            QTRY_COMPARE(session.exchange.keptCount(), 1);
        }
        session.server.cancelExchange();
        session.server.disconnect();
        awaited(std::move(connecting));
        QCOMPARE(session.exchange.sent().size(), answered + 1);
        QVERIFY(session.alerts.shown().isEmpty() && !session.server.isConnected());
        QVERIFY(!session.catalogues.calls.contains("update"));
    }
};

QTEST_GUILESS_MAIN(ConnectingTest)
#include "tst_connecting.moc"
