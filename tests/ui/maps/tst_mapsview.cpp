#include "CurrentMapPane.h"
#include "LoadMapPane.h"
#include "MapsFixture.h"

#include <QCheckBox>
#include <QTimer>

static const QList<RotationRow> tdmRotation{
    {"Ropeway", "Two Crews"}, {"Millrace", "Dock Watch"}, {"ward_new", "Dock Watch"}};

class MapsViewTest : public QObject
{
    Q_OBJECT
private slots:
    void aRefreshNeverTouchesTheRotation()
    {
        Maps maps;
        awaited(maps.view.updateMapList(7));
        QCOMPARE(maps.rotation(), tdmRotation);
        maps.tell("g_gametype", "ladder7");
        maps.tell("mapname", "ward_unheard");
        maps.tell("sv_mapRotation", "map ward_saltworks");
        maps.exchange.forgetSent();
        maps.press("refreshCurrentMapButton");
        QCOMPARE(maps.sent(), QStringList({"g_gametype", "mapname"}));
        QCOMPARE(maps.current(), QStringList({"ladder7", "ward_unheard"})); // unknown: as the server calls them
        QCOMPARE(maps.rotation(), tdmRotation);
    }

    void nothingMoreIsAskedOfAServerThatFails_data()
    {
        QTest::addColumn<RConResult>("result");
        QTest::newRow("refused") << RConResultInvalidPassword;
        QTest::newRow("silent") << RConResultTimeout;
    }
    void nothingMoreIsAskedOfAServerThatFails()
    {
        QFETCH(RConResult, result);
        Maps maps;
        awaited(maps.view.updateMapList(7));
        maps.exchange.answer("g_gametype", ScriptedExchange::failure("", result));
        maps.exchange.forgetSent();
        awaited(maps.view.updateMapList(7));
        QCOMPARE(maps.sent(), QStringList{"g_gametype"});
        QCOMPARE(maps.current(), QStringList({"", ""}));
        QCOMPARE(maps.rotation(), tdmRotation); // as it was last told
        QCOMPARE(maps.alerts.shown().size(), 0);
    }

    void disconnectingInTheMiddleChangesNothing()
    {
        Maps maps;
        awaited(maps.view.updateMapList(7));
        maps.exchange.forgetSent();
        maps.exchange.hold();
        const QCoro::Task<> task = maps.view.updateMapList(7);
        maps.exchange.release();
        QTRY_COMPARE(maps.exchange.sent().size(), 2);
        maps.server.disconnect();
        maps.exchange.release();
        QTRY_VERIFY(task.isReady());
        QCOMPARE(maps.exchange.sent().size(), 2);
        QCOMPARE(maps.current(), QStringList({"", ""})); // what comes late is the former server's
        QCOMPARE(maps.rotation(), QList<RotationRow>());
        QCOMPARE(maps.alerts.shown().size(), 0);
    }

    void theFormerServersRotationGoes_data()
    {
        QTest::addColumn<bool>("isEnded"); // before the next connect
        QTest::newRow("with the connection") << true;
        QTest::newRow("with the next one, which tells none") << false;
    }
    void theFormerServersRotationGoes()
    {
        QFETCH(bool, isEnded);
        Maps maps;
        awaited(maps.view.updateMapList(7));
        QVERIFY(maps.button("copyToBuilderButton").isEnabled());
        maps.exchange.forget("sv_mapRotation");
        if (isEnded)
            maps.server.disconnect();
        else
            maps.connectToServer();
        awaited(maps.view.didConnect());
        QVERIFY(maps.settle());
        QCOMPARE(maps.rotation(), QList<RotationRow>());
        QVERIFY(!maps.button("copyToBuilderButton").isEnabled());
        QCOMPARE(maps.button("setBuiltRotationButton").isEnabled(), !isEnded);
    }

    void sendsItsCommands()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        for (const char *button : {"restartMapButton", "fastRestartMapButton", "startNextMapButton"})
            maps.press(button);
        QCOMPARE(maps.sent(), QStringList({"map_restart", "fast_restart", "map_rotate"})); // and no refresh after it
        QCOMPARE(maps.alerts.shown().size(), 0);
        maps.exchange.answer("map_restart", ScriptedExchange::failure("lost %1"));
        maps.press("restartMapButton");
        QVERIFY(maps.settle());
        QCOMPARE(maps.alerts.titles(), QStringList{"Remote Command Failure"});
        QCOMPARE(maps.alerts.texts(), QStringList{"'map_restart' returned an error: lost %1"});
    }

    void nothingCanBePressedWithoutAConnection()
    {
        Maps maps;
        maps.choose("Dock Watch", "Ropeway");
        awaited(maps.view.updateMapList(MapsView::AllFlags));
        QCOMPARE(maps.current(), QStringList({"Two Crews", "Saltworks"}));
        for (const bool isConnected : {true, false}) {
            if (!isConnected)
                maps.server.disconnect();
            for (const char *name : {"refreshCurrentMapButton", "restartMapButton", "fastRestartMapButton",
                                     "startNextMapButton", "loadMapButton"})
                QCOMPARE(maps.button(name).isEnabled(), isConnected);
        }
        QCOMPARE(maps.current(), QStringList({"", ""}));
    }

    void theTimerRunsFromTheConnectToItsEnd()
    {
        Maps maps;
        auto *timer = control<QTimer>(maps.view, "autoupdateMapsTimer");
        control<QCheckBox>(maps.view, "autoupdateMaps")->setChecked(true);
        maps.view.willDisconnect();
        QVERIFY(!timer->isActive());
        awaited(maps.view.didConnect());
        QCOMPARE(maps.sent(), QStringList({"g_gametype", "mapname", "sv_mapRotation"}));
        QVERIFY(timer->isActive());
        maps.exchange.forgetSent();
        timer->setInterval(1);
        QTRY_VERIFY(maps.exchange.sent().size() >= 4);
        QCOMPARE(maps.exchange.sent().first(4), QStringList({"g_gametype", "mapname", "g_gametype", "mapname"}));
        timer->stop();
        QVERIFY(maps.settle());
    }

    void aRefreshThatWasCalledOffIsNotInTheWay()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.hold();
        maps.press("restartMapButton");
        maps.press("refreshCurrentMapButton"); // waits
        maps.actions.dropWaiting();
        maps.server.cancelExchange();
        QCOMPARE(maps.sent(), QStringList{"map_restart"});
        maps.press("refreshCurrentMapButton");
        QVERIFY(maps.answerInOrder({"g_gametype", "mapname"}));
    }

    void aFailureEndsTheLoad()
    {
        Maps maps;
        const QString set = "setadmindvar g_gametype \"docks\"";
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.answer(set, ScriptedExchange::failure("lost"));
        maps.field("currentGameTypeField").showText("old");
        maps.choose("Dock Watch", "Ropeway");
        maps.press("loadMapButton");
        QCOMPARE(maps.sent(), QStringList{set}); // the map would start with another gametype
        QCOMPARE(maps.current().first(), QString("old"));
        QCOMPARE(maps.alerts.texts(), QStringList{"'g_gametype' returned an error: lost"});
    }

    void whatWasChosenAtThePressIsLoaded()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.hold();
        maps.press("startNextMapButton");
        maps.choose("Dock Watch", "Ropeway");
        maps.press("loadMapButton"); // waits behind the other
        maps.choose("Every Lamp Alone", "Millrace");
        QVERIFY(maps.answerInOrder({"map_rotate", "setadmindvar g_gametype \"docks\"", "map ward_ropeway"}));
        QCOMPARE(maps.current(), QStringList({"Dock Watch", "Ropeway"}));
    }

    void nothingIsLoadedWithoutAChoice()
    {
        Maps maps;
        maps.choose("Dock Watch", "Ropeway");
        QVERIFY(maps.button("loadMapButton").isEnabled());
        control<QListView>(maps.view, "mapListView")->selectionModel()->clear();
        QVERIFY(!maps.button("loadMapButton").isEnabled());
        maps.choose("Dock Watch", "Ropeway");
        maps.write("gametypes", "<a><Gametype><name>X</name></Gametype></a>"); // without its name in the game
        maps.loadCatalogues();
        QVERIFY(!maps.button("loadMapButton").isEnabled());
        control<LoadMapPane>(maps.view, "loadMapPane")->loadMapButtonPressed();
        QCOMPARE(maps.sent(), QStringList());
    }

    void thePickersFollowTheCatalogues()
    {
        Maps maps;
        maps.choose("Dock Watch", "Ropeway");
        maps.write("gametypes", "<a><Gametype><name>Dock Watch</name><dvarName>old</dvarName></Gametype>"
                                "<Gametype><name>New</name><dvarName>n</dvarName></Gametype>"
                                "<Gametype><name>Dock Watch</name><dvarName>dom2</dvarName></Gametype></a>");
        maps.write("maps", "<a><version>4.0</version><Map><name>Zoo</name><dvarName>ward_zoo</dvarName></Map>"
                           "<Map><name>Ropeway</name><dvarName>ward_r1</dvarName></Map>"
                           "<Map><name>Attic</name><dvarName>ward_attic</dvarName></Map>"
                           "<Map><name>Ropeway</name><dvarName>ward_r2</dvarName></Map></a>");
        maps.loadCatalogues();
        QCOMPARE(maps.listedMaps(), QStringList({"Zoo", "Attic", "Ropeway"})); // the file's order, the later of two
        const auto *popUp = control<QComboBox>(maps.view, "gametypePopUpButton");
        QCOMPARE(popUp->currentText(), QString("Dock Watch"));
        QCOMPARE(popUp->count(), 2);
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.press("loadMapButton");
        QCOMPARE(maps.sent(), QStringList({"setadmindvar g_gametype \"dom2\"", "map ward_r2"}));
    }

    void mapsAreLeftOutByTheModeOfThisServer()
    {
        Maps maps;
        maps.exchange.answer("dvardump",
                             ScriptedExchange::dump("sv_ranked \"2\"\nno_zoo \"1\"\nplaylist_enabled \"0\"\n"));
        maps.connectToServer();
        maps.write("maps", "<a><version>4.0</version><Map><name>Zoo</name><dvarName>ward_zoo</dvarName>"
                           "<excludeDvar>no_zoo</excludeDvar></Map>"
                           "<Map><name>Attic</name><dvarName>ward_attic</dvarName></Map></a>");
        maps.loadCatalogues();
        QCOMPARE(maps.listedMaps(), QStringList{"Attic"});
        maps.exchange.answer("dvardump", ScriptedExchange::dump()); // unranked
        maps.connectToServer();
        QCOMPARE(maps.listedMaps(), QStringList({"Zoo", "Attic"}));
    }
};

QTEST_MAIN(MapsViewTest)
#include "tst_mapsview.moc"
