#include "CurrentMapPane.h"
#include "LoadMapPane.h"
#include "MapsFixture.h"
#include "TabOrder.h"

#include <QAbstractItemModelTester>
#include <QAbstractProxyModel>
#include <QCheckBox>
#include <QMenu>
#include <QTimer>

static const QList<RotationRow> tdmRotation{
    {"Ropeway", "Two Crews"}, {"Millrace", "Dock Watch"}, {"ward_new", "Dock Watch"}};

/// The rows behind what a table shows in an order of its own.
static QAbstractItemModel *sourceOf(const QAbstractItemModel &arranged)
{
    return dynamic_cast<const QAbstractProxyModel &>(arranged).sourceModel();
}

class MapsViewTest : public QObject
{
    Q_OBJECT
private slots:
    void theRotationAloneAsksForTheGametypeAsWell()
    {
        Maps maps;
        maps.field("currentMapField").showText("old");
        awaited(maps.view.updateMapList(MapsView::RotationFlag));
        QCOMPARE(maps.exchange.sent(), QStringList({"g_gametype", "sv_mapRotation"}));
        QCOMPARE(maps.current(), QStringList({"Two Crews", "old"}));
        QCOMPARE(maps.rotation(), tdmRotation);
    }

    void aRefreshNeverTouchesTheRotation()
    {
        Maps maps;
        const QAbstractItemModelTester tester(&maps.rotationModel());
        const QAbstractItemModelTester sourceTester(sourceOf(maps.rotationModel()));
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

    void whatFailsIsEmptyButTheRotationStays()
    {
        Maps maps;
        awaited(maps.view.updateMapList(7));
        for (const char *name : {"g_gametype", "mapname", "sv_mapRotation"})
            maps.exchange.forget(name);
        awaited(maps.view.updateMapList(7));
        QCOMPARE(maps.current(), QStringList({"", ""}));
        QCOMPARE(maps.rotation(), tdmRotation);
        QCOMPARE(maps.alerts.shown().size(), 0);
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
        control<CurrentMapPane>(maps.view, "currentMapPane")->updateMapsTimer();
        QCOMPARE(maps.sent(), QStringList{"g_gametype"});
        QCOMPARE(maps.current(), QStringList({"", ""}));
    }

    void disconnectingInTheMiddleChangesNothing_data()
    {
        QTest::addColumn<int>("answered"); // queries before the end
        QTest::addColumn<bool>("isCancelled");
        for (int answered = 0; answered < 3; ++answered) {
            QTest::addRow("cancelled after %d", answered) << answered << true;
            QTest::addRow("ended after %d", answered) << answered << false;
        }
    }
    void disconnectingInTheMiddleChangesNothing()
    {
        QFETCH(int, answered);
        QFETCH(bool, isCancelled);
        Maps maps;
        awaited(maps.view.updateMapList(7));
        maps.exchange.forgetSent();
        maps.exchange.hold();
        const QCoro::Task<> task = maps.view.updateMapList(7);
        for (int i = 0; i < answered; ++i) {
            maps.exchange.release();
            QTRY_COMPARE(maps.exchange.sent().size(), i + 2);
        }
        if (isCancelled)
            maps.exchange.cancel();
        maps.server.disconnect();
        if (!isCancelled)
            maps.exchange.release();
        QTRY_VERIFY(task.isReady());
        QCOMPARE(maps.exchange.sent().size(), answered + 1);
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
        QMenu menu;
        maps.view.fillMenu(menu);
        const auto isOffered = [&menu](const QString &text) {
            emit menu.aboutToShow();
            for (const QAction *action : menu.actions()) {
                if (action->text() == text)
                    return action->isEnabled();
            }
            return false;
        };
        const auto *table = control<PlaceholderTable>(maps.view, "mapServerRotationTableView");
        awaited(maps.view.updateMapList(7));
        QVERIFY(isOffered("&Copy Server's Rotation to Builder") && isOffered("Set Rotation &on Server"));
        maps.exchange.forget("sv_mapRotation");
        if (isEnded)
            maps.server.disconnect();
        else
            maps.connectToServer();
        QCOMPARE(maps.rotation(), QList<RotationRow>());
        QCOMPARE(table->placeholder().startsWith("Not connected."), isEnded);
        awaited(maps.view.didConnect());
        QVERIFY(maps.settle());
        QCOMPARE(maps.rotation(), QList<RotationRow>());
        QVERIFY(!maps.button("copyToBuilderButton").isEnabled());
        QVERIFY(!isOffered("&Copy Server's Rotation to Builder"));
        QCOMPARE(maps.button("setBuiltRotationButton").isEnabled(), !isEnded);
        QCOMPARE(isOffered("Set Rotation &on Server"), !isEnded);
        const MapsView later(maps.server, maps.actions, maps.alerts, maps.preferences, maps.catalogues,
                             maps.mapRotations);
        QCOMPARE(control<QPushButton>(later, "setBuiltRotationButton")->isEnabled(), !isEnded);
    }

    void sendsItsCommands()
    {
        for (const auto &[button, command] : {std::pair("restartMapButton", "map_restart"),
                                              {"fastRestartMapButton", "fast_restart"},
                                              {"startNextMapButton", "map_rotate"}}) {
            Maps maps;
            maps.exchange.answer(command, ScriptedExchange::ok());
            auto *pressed = control<QPushButton>(maps.view, button);
            pressed->click();
            QCOMPARE(maps.sent(), QStringList{command}); // and no refresh after it
            QCOMPARE(maps.alerts.shown().size(), 0);
            maps.exchange.answer(command, ScriptedExchange::failure("lost %1"));
            pressed->click();
            QCOMPARE(maps.sent().size(), 2);
            QCOMPARE(maps.alerts.titles(), QStringList{"Remote Command Failure"});
            QCOMPARE(maps.alerts.texts(), QStringList{QString("'%1' returned an error: lost %2").arg(command, "%1")});
        }
    }

    void nothingCanBePressedWithoutAConnection()
    {
        Maps maps;
        QMenu menu;
        maps.view.fillMenu(menu);
        maps.choose("Dock Watch", "Ropeway");
        const auto enabled = [&maps, &menu] {
            QStringList names;
            for (const char *name : {"refreshCurrentMapButton", "restartMapButton", "fastRestartMapButton",
                                     "startNextMapButton", "loadMapButton"}) {
                if (maps.button(name).isEnabled())
                    names.append(name);
            }
            for (const QAction *action : menu.actions().first(5)) {
                if (action->isEnabled())
                    names.append(action->text());
            }
            return names;
        };
        awaited(maps.view.updateMapList(MapsView::AllFlags));
        QCOMPARE(enabled().size(), 10);
        QCOMPARE(maps.current(), QStringList({"Two Crews", "Saltworks"}));
        maps.server.disconnect();
        QCOMPARE(enabled(), QStringList());
        QCOMPARE(maps.current(), QStringList({"", ""}));
        maps.connectToServer();
        QCOMPARE(enabled().size(), 10);
    }

    void aCommandCalledOffRaisesNoAlert()
    {
        Maps maps;
        maps.choose("Dock Watch", "Ropeway");
        maps.exchange.hold();
        maps.press("loadMapButton");
        maps.press("restartMapButton"); // waits
        maps.actions.dropWaiting();
        maps.server.cancelExchange();
        maps.server.disconnect();
        QCOMPARE(maps.sent().size(), 1);
        QCOMPARE(maps.current(), QStringList({"", ""}));
        QCOMPARE(maps.alerts.shown().size(), 0);
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

    void anActionGetsInBetweenTheQueriesOfAConnect()
    {
        Maps maps;
        maps.exchange.answer("fast_restart", ScriptedExchange::ok());
        maps.exchange.hold();
        awaited(maps.view.didConnect());
        QTRY_COMPARE(maps.exchange.keptCount(), 1);
        maps.press("fastRestartMapButton");
        while (maps.exchange.sent().size() < 4) {
            QTRY_COMPARE(maps.exchange.keptCount(), 1);
            maps.exchange.release();
            QTRY_VERIFY(maps.exchange.keptCount() == 1 || maps.actions.isIdle());
        }
        QCOMPARE(maps.exchange.sent(), QStringList({"g_gametype", "fast_restart", "mapname", "sv_mapRotation"}));
        maps.exchange.cancel();
        QVERIFY(maps.settle());
    }

    void noTimerStartsOnceTheConnectionHasEnded()
    {
        Maps maps;
        control<QCheckBox>(maps.view, "autoupdateMaps")->setChecked(true);
        maps.view.willDisconnect();
        maps.exchange.hold();
        awaited(maps.view.didConnect());
        QTRY_COMPARE(maps.exchange.keptCount(), 1);
        maps.exchange.cancel();
        maps.server.disconnect();
        QVERIFY(maps.settle());
        QVERIFY(!control<QTimer>(maps.view, "autoupdateMapsTimer")->isActive());
    }

    void aRefreshThatWaitsIsNotDoubled()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.hold();
        maps.press("restartMapButton");
        control<CurrentMapPane>(maps.view, "currentMapPane")->updateMapsTimer();
        maps.press("refreshCurrentMapButton");
        QVERIFY(maps.answerInOrder({"map_restart", "g_gametype", "mapname"}));
        QCOMPARE(maps.exchange.sent().size(), 3);
        maps.server.disconnect();
        control<CurrentMapPane>(maps.view, "currentMapPane")->updateMapsTimer();
        maps.press("refreshCurrentMapButton");
        QVERIFY(maps.actions.isIdle()); // nothing to wait for, nothing sent
        QCOMPARE(maps.exchange.sent().size(), 3);
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

    void outsideNamesAreTextsOfOneLine()
    {
        Maps maps;
        maps.view.resize(740, 560);
        const QString name = QStringLiteral("<b>x</b>\n") + QString(100000, 'W');
        maps.tell("mapname", name);
        maps.tell("sv_mapRotation", "map " + name + " map ward_ropeway");
        awaited(maps.view.updateMapList(7));
        maps.view.grab();
        QVERIFY(maps.field("currentMapField").toolTip().size() < 2000);
        QVERIFY(!maps.field("currentMapField").toolTip().contains("<b>"));
        QVERIFY(maps.view.width() == 740 && maps.view.minimumSizeHint().width() <= 740);
    }

    void aFailureEndsTheLoad_data()
    {
        QTest::addColumn<QStringList>("sent"); // the last one fails
        QTest::addColumn<QStringList>("current");
        QTest::addColumn<QString>("text");
        const QString set = "setadmindvar g_gametype \"docks\"";
        QTest::newRow("gametype") << QStringList{set} << QStringList{"old", "old"}
                                  << "'g_gametype' returned an error: lost";
        QTest::newRow("map") << QStringList{set, "map ward_ropeway"} << QStringList{"Dock Watch", "old"}
                             << "'map' returned an error: lost";
    }
    void aFailureEndsTheLoad()
    {
        QFETCH(QStringList, sent);
        QFETCH(QString, text);
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.answer(sent.last(), ScriptedExchange::failure("lost"));
        maps.field("currentGameTypeField").showText("old");
        maps.field("currentMapField").showText("old");
        maps.choose("Dock Watch", "Ropeway");
        maps.press("loadMapButton");
        QCOMPARE(maps.sent(), sent);
        QTEST(maps.current(), "current");
        QCOMPARE(maps.alerts.titles(), QStringList{"Remote Command Failure"});
        QCOMPARE(maps.alerts.texts(), QStringList{text});
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

    void nothingIsLoadedWithoutAChoice_data()
    {
        QTest::addColumn<QByteArray>("gametypes");
        QTest::addColumn<bool>("isMapSelected");
        const QByteArray crews = "<a><Gametype><name>CREWS</name><dvarName>crews</dvarName></Gametype></a>";
        QTest::newRow("no map") << crews << false;
        QTest::newRow("no gametype") << QByteArray("<a/>") << true;
        QTest::newRow("gametype without a short name")
            << QByteArray("<a><Gametype><name>X</name></Gametype></a>") << true;
    }
    void nothingIsLoadedWithoutAChoice()
    {
        QFETCH(QByteArray, gametypes);
        QFETCH(bool, isMapSelected);
        Maps maps;
        maps.choose("Dock Watch", "Ropeway");
        QVERIFY(maps.button("loadMapButton").isEnabled());
        maps.write("gametypes", gametypes);
        maps.loadCatalogues();
        if (!isMapSelected)
            control<QListView>(maps.view, "mapListView")->selectionModel()->clear();
        QVERIFY(!maps.button("loadMapButton").isEnabled());
        control<LoadMapPane>(maps.view, "loadMapPane")->loadMapButtonPressed();
        QCOMPARE(maps.sent(), QStringList());
        QCOMPARE(maps.alerts.texts(), QStringList{"Select a gametype and a map first."});
    }

    void thePickersFollowTheCatalogues()
    {
        Maps maps;
        QAbstractItemModel *list = control<QListView>(maps.view, "mapListView")->model();
        const QAbstractItemModelTester tester(list);
        const QAbstractItemModelTester sourceTester(sourceOf(*list));
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

    void itsMenuPressesItsButtons()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        QMenu menu;
        maps.view.fillMenu(menu);
        const QStringList texts = entriesOf(menu);
        QCOMPARE(texts, QStringList({"&Refresh", "Restart &Map", "&Fast Restart", "Ne&xt Map", "&Load Map", "-",
                                     "&Copy Server's Rotation to Builder", "&Add Map…", "Set Rotation &on Server"}));
        maps.choose("Dock Watch", "Ropeway");
        for (const char *text : {"Restart &Map", "&Fast Restart", "Ne&xt Map", "&Load Map"})
            menu.actions().at(texts.indexOf(QString(text)))->trigger();
        QCOMPARE(maps.sent(), QStringList({"map_restart", "fast_restart", "map_rotate",
                                           "setadmindvar g_gametype \"docks\"", "map ward_ropeway"}));
    }
    void theFocusGoesToTheMapsAndTabFromTopToBottom()
    {
        Maps maps;
        awaited(maps.view.updateMapList(7));
        maps.choose("Dock Watch", "Ropeway");
        maps.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&maps.view));
        maps.view.setFocus();
        QCOMPARE(maps.view.focusWidget()->objectName(), QString("mapListView"));
        maps.button("refreshCurrentMapButton").setFocus();
        QCOMPARE(tabOrder(maps.view, "mapRotationPreviewTableView"),
                 QStringList({"refreshCurrentMapButton", "restartMapButton", "fastRestartMapButton",
                              "startNextMapButton", "autoupdateMaps", "autoupdateMapsInterval", "gametypePopUpButton",
                              "mapListView", "loadMapButton", "copyToBuilderButton", "mapServerRotationTableView",
                              "mapRotationPreviewTableView"}));
    }
};

QTEST_MAIN(MapsViewTest)
#include "tst_mapsview.moc"
