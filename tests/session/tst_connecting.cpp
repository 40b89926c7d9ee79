#include "CatalogueLoader.h"
#include "KelServer.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QSignalSpy>
#include <QTest>

static const QString misspelt =
    QStringLiteral("Unable to fine all required dvars!\n\n- The server is not communicating properly.");

static Reply dump(const QString &extra = {})
{
    return ScriptedExchange::ok(QStringLiteral("  rcon_password \"secret\"\n"
                                               "S sv_hostname \"My Server\"\n"
                                               "playlist_excludeMap \"a\"\nplaylist_excludeGametype \"b\"\n"
                                               "playlist_excludeGametypeMap \"c\"\n") +
                                extra);
}

static const QString unranked = QStringLiteral("sv_ranked \"0\"\nplaylist_enabled \"0\"\n");

/// Catalogues of the tests: they know a few variables and write down when they are asked.
class Catalogues final : public CatalogueLoader
{
public:
    QCoro::Task<> loadCatalogues() override
    {
        calls.append(QStringLiteral("load"));
        co_return;
    }
    QStringList settingDvars() const override { return {QStringLiteral("g_gravity"), QStringLiteral("g_speed")}; }
    QStringList gametypeDvars() const override { return {QStringLiteral("scr_dm_scorelimit")}; }
    QCoro::Task<> updateControls() override
    {
        calls.append(QStringLiteral("update"));
        co_return;
    }

    QStringList calls;
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
        QTest::newRow("flags and blanks before") << "  sv_hostname \"My Server\""
                                                 << "sv_hostname"
                                                 << "My Server";
        QTest::newRow("a flag") << "S  sv_ranked   \"2\""
                                << "sv_ranked"
                                << "2";
        QTest::newRow("no blank before the value") << "name\"v\""
                                                   << "name"
                                                   << "v";
        QTest::newRow("two quoted values") << "x \"a\" \"b\""
                                           << "x"
                                           << "a";
        QTest::newRow("text after the value") << "x \"a\" default"
                                              << "x"
                                              << "a";
        QTest::newRow("no unescaping") << "x \"a\\\"b\""
                                       << "x"
                                       << "a\\";
        QTest::newRow("a tab is part of the name") << "S\tx \"a\""
                                                   << "S\tx"
                                                   << "a";
        QTest::newRow("empty value") << "x \"\""
                                     << ""
                                     << "";
        QTest::newRow("no quotes") << "255 total dvars"
                                   << ""
                                   << "";
        QTest::newRow("one quote") << "x \"a"
                                   << ""
                                   << "";
        QTest::newRow("no name") << "  \"a\""
                                 << ""
                                 << "";
    }
    void readsDumpLines()
    {
        QFETCH(QString, line);
        QFETCH(QString, name);
        QFETCH(QString, value);
        ScriptedExchange exchange;
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        server.addDvarLine(line);
        const QHash<QString, QString> expected =
            name.isEmpty() ? QHash<QString, QString>{} : QHash<QString, QString>{{name, value}};
        QCOMPARE(server.dvarList(), expected);
    }

    void refusesPorts_data()
    {
        QTest::addColumn<QString>("port");
        for (const char *port : {"", "abc", "0", "-1", "65536", "4294996256", "0x10", "12 13"})
            QTest::newRow(port) << QString::fromLatin1(port);
    }
    void refusesPorts()
    {
        QFETCH(QString, port);
        ScriptedExchange exchange;
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        awaited(server.connectToHost(QStringLiteral("127.0.0.1"), port, QStringLiteral("pw")));
        QCOMPARE(alerts.shown(),
                 QList<RecordedAlerts::Shown>({{"Invalid Port", "The value entered '" + port + "' is invalid", {}}}));
        QVERIFY(exchange.sent().isEmpty());
        QVERIFY(!server.isConnected());
    }

    void afterEachFailure_data()
    {
        QTest::addColumn<Reply>("dumpReply");
        QTest::addColumn<Reply>("singleReply");
        QTest::addColumn<bool>("isConnected");
        QTest::addColumn<QStringList>("titles");
        QTest::addColumn<QStringList>("texts");
        const QString nameless = QStringLiteral("\"sv_ranked\" is: \"0\"");
        QTest::newRow("no answer to the dump") << ScriptedExchange::failure("gone") << Reply{} << false
                                               << QStringList{"Command Send Error"} << QStringList{"gone"};
        QTest::newRow("two fields instead of three")
            << dump("playlist_enabled \"0\"\n") << ScriptedExchange::ok(nameless) << true
            << QStringList{"Server Communication Error"} << QStringList{misspelt};
        QTest::newRow("a required one is unknown, the other is asked for all the same")
            << dump() << ScriptedExchange::ok("Unknown command \"x\"") << true
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
        QFETCH(bool, isConnected);
        QFETCH(QStringList, titles);
        QFETCH(QStringList, texts);
        ScriptedExchange exchange({{"dvardump", dumpReply}});
        exchange.answerEverything(singleReply);
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        server.addToCommandHistory(QStringLiteral("old"));
        awaited(server.connectToHost(QStringLiteral("127.0.0.1"), QStringLiteral("28960"), QStringLiteral("pw")));
        QCOMPARE(server.isConnected(), isConnected);
        QCOMPARE(alerts.titles(), titles);
        QCOMPARE(alerts.texts(), texts);
        QVERIFY(server.commandHistory().isEmpty());
        QVERIFY(server.tabItems().isEmpty());
    }

    void decidesTheMode_data()
    {
        QTest::addColumn<QString>("ranked");
        QTest::addColumn<QString>("playlists");
        QTest::addColumn<bool>("isRanked");
        QTest::addColumn<QString>("tabs");
        const QString five = QStringLiteral("Players,Playlists,Settings,Messages,Console");
        const QString maps = QStringLiteral("Players,Maps,Settings,Messages,Config Builder,Console");
        const QString lists = QStringLiteral("Players,Playlists,Settings,Messages,Config Builder,Console");
        QTest::newRow("2 is ranked") << "2"
                                     << "0" << true << five;
        QTest::newRow("4 is ranked, playlists do not matter") << "4"
                                                              << "1" << true << five;
        QTest::newRow("1 is not") << "1"
                                  << "0" << false << maps;
        QTest::newRow("0 is not") << "0"
                                  << "1" << false << lists;
        QTest::newRow("almost 1") << "0"
                                  << "01" << false << maps;
    }
    void decidesTheMode()
    {
        QFETCH(QString, ranked);
        QFETCH(QString, playlists);
        QFETCH(bool, isRanked);
        QFETCH(QString, tabs);
        const QString mode = QStringLiteral("sv_ranked \"%1\"\nplaylist_enabled \"%2\"\n").arg(ranked, playlists);
        ScriptedExchange exchange({{"dvardump", dump(mode)}});
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        awaited(server.connectToHost(QStringLiteral("127.0.0.1"), QStringLiteral("28960"), QStringLiteral("pw")));
        QCOMPARE(server.isRanked(), isRanked);
        QStringList labels;
        for (const TabItem item : server.tabItems())
            labels.append(tabLabel(item));
        QCOMPARE(labels.join(QLatin1Char(',')), tabs);
        QVERIFY(alerts.shown().isEmpty());

        QSignalSpy arranged(&server, &KelServer::tabItemsChanged);
        server.setupTabsForPlaylistsAndRanked();
        QVERIFY(arranged.isEmpty()); // already right
    }

    void asksForWhatTheDumpLacks()
    {
        ScriptedExchange exchange(
            {{"dvardump", dump("playlist_enabled \"0\"\n")},
             {"sv_ranked", ScriptedExchange::ok("\"sv_ranked\" is: \"0\" default: \"0\"")},
             {"g_gravity", ScriptedExchange::ok("\"g_gravity\" is: \"800\" latched: \"\"")},
             {"g_speed", ScriptedExchange::ok("Unknown command \"g_speed\"")},
             {"scr_dm_scorelimit", ScriptedExchange::ok("\"scr_dm_scorelimit\" is: \"30\" now: \"40\"")}});
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        Catalogues catalogues;
        server.setCatalogueLoader(&catalogues);
        QSignalSpy progress(&server, &KelServer::connectProgressed);
        awaited(server.connectToHost(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), QStringLiteral("typed")));
        QCOMPARE(exchange.sent(), QStringList({"dvardump", "sv_ranked", "g_gravity", "g_speed", "scr_dm_scorelimit"}));
        for (const Request &request : exchange.requests())
            QCOMPARE(request.password, QStringLiteral("typed"));
        QCOMPARE(alerts.texts(), QStringList{"The dvar 'g_speed' was not recognized by the server"});
        QVERIFY(server.dvarList().contains(QStringLiteral("g_gravity"))); // a single query stores an empty value
        QCOMPARE(server.dvarList().value(QStringLiteral("g_gravity")), QString());
        QCOMPARE(server.dvarList().value(QStringLiteral("scr_dm_scorelimit")), QStringLiteral("40"));
        QCOMPARE(catalogues.calls, QStringList({"load", "update"}));
        QCOMPARE(progress.last(), QVariantList({3, 3}));
    }

    void connectingAnewForgetsTheOldServer()
    {
        ScriptedExchange exchange({{"dvardump", dump(unranked)}});
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        awaited(server.connectToHost(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), QStringLiteral("pw")));
        QSignalSpy cleared(&server, &KelServer::consoleCleared);
        awaited(server.connectToHost(QStringLiteral("10.0.0.2"), QStringLiteral("no port"), QStringLiteral("pw")));
        QVERIFY(server.dvarList().isEmpty());
        QCOMPARE(cleared.size(), 1);
        QVERIFY(server.isConnected()); // only disconnect() ends a connection
        QCOMPARE(server.host(), QStringLiteral("10.0.0.1"));
        server.disconnect();
        QVERIFY(!server.isConnected());
    }

    void canBeCalledOffAtEveryStep_data()
    {
        QTest::addColumn<int>("answered");
        QTest::newRow("during the dump") << 0;
        QTest::newRow("during a required one") << 1;
        QTest::newRow("during a catalogued one") << 2;
    }
    void canBeCalledOffAtEveryStep()
    {
        QFETCH(int, answered);
        ScriptedExchange exchange({{"dvardump", dump("playlist_enabled \"0\"\n")},
                                   {"sv_ranked", ScriptedExchange::ok("\"sv_ranked\" is: \"0\" default: \"0\"")}});
        exchange.hold();
        RecordedAlerts alerts;
        KelServer server(exchange, alerts);
        Catalogues catalogues;
        server.setCatalogueLoader(&catalogues);
        QCoro::Task<> connecting =
            server.connectToHost(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), QStringLiteral("pw"));
        for (int i = 0; i < answered; ++i) {
            exchange.release();
            QTRY_COMPARE(exchange.keptCount(), 1);
        }
        server.cancelExchange();
        server.disconnect();
        awaited(std::move(connecting));
        QCOMPARE(exchange.sent().size(), answered + 1);
        QVERIFY(alerts.shown().isEmpty());
        QVERIFY(!server.isConnected());
        QVERIFY(!catalogues.calls.contains(QStringLiteral("update")));
    }
};

QTEST_GUILESS_MAIN(ConnectingTest)
#include "tst_connecting.moc"
