#include "CatalogueLoader.h"
#include "KelServer.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

static const QString misspelt = "Unable to fine all required dvars!\n\n- The server is not communicating properly.";

const auto dump = &ScriptedExchange::dump;

/// Catalogues of the tests: they know a few variables and write down when they are asked.
class Catalogues final : public CatalogueLoader
{
public:
    QCoro::Task<> loadCatalogues() override
    {
        calls.append("load");
        co_return;
    }
    QStringList settingDvars() const override { return {"g_gravity", "g_speed"}; }
    QStringList gametypeDvars() const override { return {"scr_dm_scorelimit"}; }
    QCoro::Task<> updateControls() override
    {
        calls.append("update");
        co_return;
    }

    QStringList calls;
};

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
    KelServer server{exchange, alerts};
};

class ConnectingTest : public QObject
{
    Q_OBJECT
private slots:
    void readsDumpLines_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("name"); // empty: the line is ignored
        QTest::addColumn<QString>("value");
        const auto row = [](const char *title, const char *line, const char *name, const char *value) {
            QTest::newRow(title) << QString(line) << QString(name) << QString(value);
        };
        row("a flag and blanks before", "  S  sv_ranked   \"2\"", "sv_ranked", "2");
        row("no blank before the value", "name\"v\"", "name", "v");
        row("more after the value", "x \"a\" \"b\" default", "x", "a");
        row("no unescaping", "x \"a\\\"b\"", "x", "a\\");
        row("a tab is part of the name", "S\tx \"a\"", "S\tx", "a");
        row("empty value", "x \"\"", "", "");
        row("no quotes", "255 total dvars", "", "");
        row("one quote", "x \"a", "", "");
        row("no name", "  \"a\"", "", "");
    }
    void readsDumpLines()
    {
        QFETCH(QString, line);
        QFETCH(QString, name);
        QFETCH(QString, value);
        Session session;
        session.server.addDvarLine(line);
        const QHash<QString, QString> expected =
            name.isEmpty() ? QHash<QString, QString>{} : QHash<QString, QString>{{name, value}};
        QCOMPARE(session.server.dvarList(), expected);
    }

    void takesNoMoreVariablesThanAServerHas()
    {
        Session session;
        for (qsizetype i = 0; i < KelServer::mostDumpedDvars; ++i)
            session.server.addDvarLine(QStringLiteral("a%1 \"1\"").arg(i));
        session.server.addDvarLine(u"b \"1\"");
        session.server.addDvarLine(u"a7 \"2\"");
        QCOMPARE(session.server.dvarList().size(), KelServer::mostDumpedDvars);
        QCOMPARE(session.server.dvarList().value("a7"), "2");
    }

    void refusesPorts()
    {
        for (const QString &port : {QString(), QString("abc"), QString("0"), QString("65536"), QString("4294996256")}) {
            Session session;
            session.connect("127.0.0.1", port);
            const QString text = "The value entered '" + port + "' is invalid";
            QCOMPARE(session.alerts.shown(), QList<RecordedAlerts::Shown>({{"Invalid Port", text, {}}}));
            QVERIFY(session.exchange.sent().isEmpty());
            QVERIFY(!session.server.isConnected());
        }
    }

    void refusesAPasswordThatCannotBeSent()
    {
        Session session;
        for (const QString &password : {u"a\u2019"_qs, u"\u0436"_qs})
            awaited(session.server.connectToHost("192.0.2.1", "50960", password));
        const QString text = "The game cannot hold a character of this password. Nothing was sent.";
        QCOMPARE(session.alerts.texts(), QStringList({text, text}));
        QCOMPARE(session.alerts.titles(), QStringList({"Command Send Error", "Command Send Error"}));
        QVERIFY(session.exchange.sent().isEmpty() && !session.server.isConnected());
    }

    void afterEachFailure_data()
    {
        QTest::addColumn<Reply>("dumpReply");
        QTest::addColumn<Reply>("singleReply");
        QTest::addColumn<bool>("isConnected");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("texts");
        const QString nameless = "\"sv_ranked\" is: \"0\"";
        QTest::newRow("no answer to the dump") << ScriptedExchange::failure("gone") << Reply{} << false
                                               << QStringList{"Command Send Error"} << QStringList{"gone"};
        QTest::newRow("two fields instead of three")
            << dump("playlist_enabled \"0\"\n") << ScriptedExchange::ok(nameless) << true
            << QStringList{"Server Communication Error"} << QStringList{misspelt};
        QTest::newRow("a required one is unknown, the other is asked for all the same")
            << dump({}) << ScriptedExchange::ok("Unknown command \"x\"") << true
            << QStringList{"Unknown dvar", "Unknown dvar", "Server Communication Error"}
            << QStringList{"The dvar 'sv_ranked' was not recognized by the server",
                           "The dvar 'playlist_enabled' was not recognized by the server", misspelt};
        QTest::newRow("no answer to a single one")
            << dump("sv_ranked \"0\"\n") << ScriptedExchange::failure("gone") << true
            << QStringList{"Command Send Error", "Server Communication Error"} << QStringList{"gone", misspelt};
    }
    void afterEachFailure()
    {
        QFETCH(Reply, dumpReply);
        QFETCH(Reply, singleReply);
        Session session(dumpReply);
        session.exchange.answerEverything(singleReply);
        session.server.addToCommandHistory("old");
        session.connect();
        QTEST(session.server.isConnected(), "isConnected");
        QTEST(session.alerts.titles(), "titles");
        QTEST(session.alerts.texts(), "texts");
        QVERIFY(session.server.commandHistory().isEmpty() && session.server.commandHistoryCursor() == 0);
        QVERIFY(session.server.tabSet() == TabSet::None);
    }

    void everyMissingVariableCounts_data()
    {
        QTest::addColumn<QString>("known");
        QTest::newRow("the first is unknown") << "playlist_enabled";
        QTest::newRow("the last is unknown") << "sv_ranked";
    }
    void everyMissingVariableCounts()
    {
        QFETCH(QString, known);
        Session session(dump({}));
        session.exchange.answerEverything(ScriptedExchange::ok("Unknown command \"x\""));
        session.exchange.answer(known, ScriptedExchange::ok("\"" + known + "\" is: \"0\" default: \"0\""));
        session.connect();
        QCOMPARE(session.alerts.titles(), QStringList({"Unknown dvar", "Server Communication Error"}));
    }

    void tellsOfARefusedPasswordBeforeItsAlert_data()
    {
        QTest::addColumn<RConResult>("result");
        QTest::addColumn<int>("told");
        QTest::newRow("refused") << RConResultInvalidPassword << 1;
        QTest::newRow("silent") << RConResultTimeout << 0;
    }
    void tellsOfARefusedPasswordBeforeItsAlert()
    {
        QFETCH(RConResult, result);
        Session session(ScriptedExchange::failure("no", result));
        session.alerts.hold();
        QSignalSpy refused(&session.server, &KelServer::passwordRefused);
        QCoro::Task<> connecting = session.startConnecting();
        QTRY_COMPARE(session.alerts.openCount(), 1);
        QTEST(static_cast<int>(refused.size()), "told");
        session.alerts.dismiss();
        awaited(std::move(connecting));
    }

    void isUnderWayOnlyWhileTheServerIsAsked()
    {
        Session session(dump("playlist_enabled \"0\"\n"));
        session.exchange.answerEverything(ScriptedExchange::ok("Unknown command \"x\""));
        session.exchange.hold();
        session.alerts.hold();
        QSignalSpy underWay(&session.server, &KelServer::exchangeUnderWayChanged);
        QCoro::Task<> connecting = session.startConnecting();
        QCOMPARE(underWay, QList<QVariantList>({{true}}));
        session.exchange.release();
        QTRY_COMPARE(session.exchange.keptCount(), 1);
        QCOMPARE(underWay, QList<QVariantList>({{true}, {false}, {true}}));
        session.exchange.release();
        QTRY_COMPARE(session.alerts.openCount(), 1); // of an unknown variable
        QCOMPARE(underWay, QList<QVariantList>({{true}, {false}, {true}, {false}}));
        session.alerts.dismiss();
        QTRY_COMPARE(session.alerts.openCount(), 1);
        session.alerts.dismiss();
        awaited(std::move(connecting));
    }

    void decidesTheMode_data()
    {
        QTest::addColumn<QString>("ranked");
        QTest::addColumn<QString>("playlists");
        QTest::addColumn<bool>("isRanked");
        QTest::addColumn<TabSet>("tabs");
        const auto row = [](const char *title, const char *ranked, const char *playlists, TabSet tabs) {
            QTest::newRow(title) << QString(ranked) << QString(playlists) << (tabs == TabSet::Ranked) << tabs;
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
        Session session(dump(QString("sv_ranked \"%1\"\nplaylist_enabled \"%2\"\n").arg(ranked, playlists)));
        session.connect();
        QTEST(session.server.isRanked(), "isRanked");
        QTEST(session.server.tabSet(), "tabs");
        QVERIFY(session.alerts.shown().isEmpty());

        QSignalSpy arranged(&session.server, &KelServer::tabSetChanged);
        session.server.setupTabsForPlaylistsAndRanked();
        QVERIFY(arranged.isEmpty()); // already right
    }

    void asksForRequiredOnesThatTheDumpLacks()
    {
        Session session(dump("playlist_enabled \"0\"\n"));
        session.exchange.answer(
            "sv_ranked",
            ScriptedExchange::ok(QString("\"sv_ranked\" is: \"0\" now: \"4\"").repeated(2))); // doubled on its way
        Catalogues catalogues;
        session.server.setCatalogueLoader(&catalogues);
        QSignalSpy connected(&session.server, &KelServer::didConnect);
        session.connect();
        QCOMPARE(session.exchange.sent(), QStringList({"dvardump", "sv_ranked"})); // catalogued ones can wait
        for (const Request &request : session.exchange.requests())
            QCOMPARE(request.password, "typed");
        QVERIFY(session.alerts.shown().isEmpty());
        QVERIFY(session.server.isRanked());
        QCOMPARE(session.server.cataloguedDvars(), QStringList({"g_gravity", "g_speed"}));
        QCOMPARE(catalogues.calls, QStringList({"load", "update"}));
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
        const QStringList three{"192.0.2.1", "192.0.2.2", "192.0.2.3"};
        QTest::newRow("the second answers") << three << three.mid(0, 2) << QStringList();
        QTest::newRow("the first refuses")
            << QStringList{"192.0.2.4", "192.0.2.2"} << QStringList{"192.0.2.4"} << QStringList{"Invalid Password."};
        QTest::newRow("none answers") << QStringList{"192.0.2.1", "192.0.2.3"} << QStringList{"192.0.2.1", "192.0.2.3"}
                                      << QStringList{"no answer"};
        QTest::newRow("there is none") << QStringList() << QStringList() << QStringList{"No such host is known."};
    }
    void triesAddressesOneAfterTheOther()
    {
        QFETCH(QStringList, addresses);
        QFETCH(QStringList, asked);
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
        QCOMPARE(tried, asked);
        QTEST(session.alerts.texts(), "alerts");
        QCOMPARE(session.server.isConnected(), session.alerts.shown().isEmpty());
        QCOMPARE(session.server.serverKey(), session.server.isConnected() ? "play.example.org:50960" : ":0");
    }

    void connectingAnewForgetsTheOldServer()
    {
        Session session;
        session.connect();
        QSignalSpy cleared(&session.server, &KelServer::consoleCleared);
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
        session.exchange.answer("sv_ranked", ScriptedExchange::ok("\"sv_ranked\" is: \"0\" default: \"0\""));
        session.exchange.hold();
        Catalogues catalogues;
        session.server.setCatalogueLoader(&catalogues);
        QCoro::Task<> connecting = session.startConnecting();
        for (int i = 0; i < answered; ++i) {
            session.exchange.release();
            QTRY_COMPARE(session.exchange.keptCount(), 1);
        }
        session.server.cancelExchange();
        session.server.disconnect();
        awaited(std::move(connecting));
        QCOMPARE(session.exchange.sent().size(), answered + 1);
        QVERIFY(session.alerts.shown().isEmpty());
        QVERIFY(!session.server.isConnected());
        QVERIFY(!catalogues.calls.contains("update"));
    }
};

QTEST_GUILESS_MAIN(ConnectingTest)
#include "tst_connecting.moc"
