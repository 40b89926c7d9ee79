#include "MapsFixture.h"

#include <QAbstractItemModelTester>

static const QList<RotationRow> tdmRotation{
    {"Ropeway", "Team Match"}, {"Millrace", "Domination"}, {"mp_new", "Domination"}};

class MapsViewTest : public QObject
{
    Q_OBJECT
private slots:
    void theRotationAloneAsksForTheGametypeAsWell()
    {
        Maps maps;
        maps.view.currentMapField->showText("old");
        awaited(maps.view.updateMapList(MapsView::RotationFlag));
        QCOMPARE(maps.exchange.sent(), QStringList({"g_gametype", "sv_mapRotation"}));
        QCOMPARE(maps.current(), QStringList({"Team Match", "old"}));
        QCOMPARE(maps.rotation(), tdmRotation);
    }

    void aRefreshNeverTouchesTheRotation()
    {
        Maps maps;
        const QAbstractItemModelTester tester(maps.view.mapServerRotationController);
        awaited(maps.view.updateMapList(7));
        QCOMPARE(maps.rotation(), tdmRotation);
        maps.tell("g_gametype", "ladder7");
        maps.tell("mapname", "mp_unheard");
        maps.tell("sv_mapRotation", "map mp_saltworks");
        maps.exchange.forgetSent();
        maps.view.refreshCurrentMapButton->click();
        QCOMPARE(maps.sent(), QStringList({"g_gametype", "mapname"}));
        QCOMPARE(maps.current(), QStringList({"ladder7", "mp_unheard"})); // unknown: as the server calls them
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
        const QStringList shown = maps.current();
        maps.exchange.forgetSent();
        maps.exchange.hold();
        const QCoro::Task<> task = maps.view.updateMapList(7);
        for (int i = 0; i < answered; ++i) {
            maps.exchange.release();
            QTRY_COMPARE(maps.exchange.sent().size(), i + 2);
        }
        maps.exchange.forget("g_gametype");
        maps.exchange.forget("mapname");
        if (isCancelled)
            maps.exchange.cancel();
        maps.server.disconnect();
        if (!isCancelled)
            maps.exchange.release();
        QTRY_VERIFY(task.isReady());
        QCOMPARE(maps.exchange.sent().size(), answered + 1);
        QCOMPARE(maps.current(), shown);
        QCOMPARE(maps.rotation(), tdmRotation);
        QCOMPARE(maps.alerts.shown().size(), 0);
    }

    void sendsItsCommands()
    {
        for (const auto &[button, command] : {std::pair("restartMapButton", "map_restart"),
                                              {"fastRestartMapButton", "fast_restart"},
                                              {"startNextMapButton", "map_rotate"}}) {
            Maps maps;
            maps.exchange.answer(command, ScriptedExchange::ok());
            auto *pressed = maps.view.findChild<QPushButton *>(button);
            pressed->click();
            QCOMPARE(maps.sent(), QStringList{command}); // and no refresh after it
            QCOMPARE(maps.alerts.shown().size(), 0);
            maps.exchange.answer(command, ScriptedExchange::failure("lost %1"));
            pressed->click();
            QVERIFY(maps.settle());
            maps.server.disconnect();
            pressed->click();
            QCOMPARE(maps.sent().size(), 2);
            const QString text = QString("'%1' returned an error: ").arg(command);
            QCOMPARE(maps.alerts.titles(), QStringList({"Remote Command Failure", "Remote Command Failure"}));
            QCOMPARE(maps.alerts.texts(), QStringList({text + "lost %1", text + "Not connected to a game server."}));
        }
    }

    void aCommandCalledOffRaisesNoAlert()
    {
        Maps maps;
        maps.choose("Domination", "Ropeway");
        maps.exchange.hold();
        maps.view.loadMapButton->click();
        maps.view.restartMapButton->click(); // waits
        maps.actions.dropWaiting();
        maps.server.cancelExchange();
        maps.server.disconnect();
        QCOMPARE(maps.sent().size(), 1);
        QCOMPARE(maps.current(), QStringList({"", ""}));
        QCOMPARE(maps.alerts.shown().size(), 0);
    }

    void theTimerFollowsThePreferences()
    {
        Maps maps;
        maps.view.autoupdateMapsInterval->setValue(86400);
        QVERIFY(!maps.view.autoupdateMapsTimer.isActive());
        maps.view.autoupdateMaps->setChecked(true);
        QVERIFY(maps.view.autoupdateMapsTimer.isActive());
        QCOMPARE(maps.view.autoupdateMapsTimer.interval(), 86400 * 1000);
        maps.view.stopAutoupdateMapsTimer();
        QVERIFY(!maps.view.autoupdateMapsTimer.isActive());
        maps.view.autoupdateMapsChanged(); // as after the next connect
        QVERIFY(maps.view.autoupdateMapsTimer.isActive());
        const MapsView later(maps.server, maps.actions, maps.alerts, maps.preferences, maps.catalogues(),
                             maps.mapRotations);
        QVERIFY(later.autoupdateMaps->isChecked());
        QCOMPARE(later.autoupdateMapsInterval->value(), 86400);
        maps.view.autoupdateMapsTimer.setInterval(1);
        QTRY_VERIFY(maps.exchange.sent().size() >= 4);
        QCOMPARE(maps.exchange.sent().first(4), QStringList({"g_gametype", "mapname", "g_gametype", "mapname"}));
        maps.view.autoupdateMaps->setChecked(false);
        QVERIFY(!maps.view.autoupdateMapsTimer.isActive());
        QVERIFY(maps.settle());
    }

    void aRefreshThatWaitsIsNotDoubled()
    {
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.hold();
        maps.view.restartMapButton->click();
        maps.view.updateMapsTimer();
        maps.view.refreshCurrentMapButton->click();
        for (const char *command : {"map_restart", "g_gametype", "mapname"}) {
            QTRY_COMPARE(maps.exchange.keptCount(), 1);
            QCOMPARE(maps.exchange.sent().last(), QString(command));
            maps.exchange.release();
        }
        QCOMPARE(maps.sent().size(), 3);
        maps.server.disconnect();
        maps.view.updateMapsTimer();
        maps.view.refreshCurrentMapButton->click();
        QVERIFY(maps.actions.isIdle()); // nothing to wait for, nothing sent
        QCOMPARE(maps.exchange.sent().size(), 3);
    }

    void outsideNamesAreTextsOfOneLine()
    {
        Maps maps;
        maps.view.resize(740, 560);
        const QString name = QStringLiteral("<b>x</b>\n") + QString(100000, 'W');
        maps.tell("mapname", name);
        maps.tell("sv_mapRotation", "map " + name + " map mp_ropeway");
        awaited(maps.view.updateMapList(7));
        maps.view.grab();
        QVERIFY(maps.view.currentMapField->toolTip().size() < 2000);
        QVERIFY(!maps.view.currentMapField->toolTip().contains("<b>"));
        QVERIFY(maps.view.width() == 740 && maps.view.minimumSizeHint().width() <= 740);
    }

    void aFailureEndsTheLoad_data()
    {
        QTest::addColumn<QStringList>("sent"); // the last one fails
        QTest::addColumn<QStringList>("current");
        QTest::addColumn<QString>("text");
        const QString set = "setadmindvar g_gametype \"dom\"";
        QTest::newRow("gametype") << QStringList{set} << QStringList{"old", "old"}
                                  << "'g_gametype' returned an error: lost";
        QTest::newRow("map") << QStringList{set, "map mp_ropeway"} << QStringList{"Domination", "old"}
                             << "'map' returned an error: lost";
    }
    void aFailureEndsTheLoad()
    {
        QFETCH(QStringList, sent);
        QFETCH(QString, text);
        Maps maps;
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.exchange.answer(sent.last(), ScriptedExchange::failure("lost"));
        maps.view.currentGameTypeField->showText("old");
        maps.view.currentMapField->showText("old");
        maps.choose("Domination", "Ropeway");
        maps.view.loadMapButton->click();
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
        maps.view.startNextMapButton->click();
        maps.choose("Domination", "Ropeway");
        maps.view.loadMapButton->click(); // waits behind the other
        maps.choose("Free for All", "Millrace");
        for (const char *command : {"map_rotate", "setadmindvar g_gametype \"dom\"", "map mp_ropeway"}) {
            QTRY_COMPARE(maps.exchange.keptCount(), 1);
            QCOMPARE(maps.exchange.sent().last(), QString(command));
            maps.exchange.release();
        }
        QVERIFY(maps.settle());
        QCOMPARE(maps.current(), QStringList({"Domination", "Ropeway"}));
    }

    void nothingIsLoadedWithoutAChoice_data()
    {
        QTest::addColumn<QByteArray>("gametypes");
        QTest::addColumn<bool>("isMapSelected");
        const QByteArray tdm = "<a><Gametype><name>TDM</name><dvarName>tdm</dvarName></Gametype></a>";
        QTest::newRow("no map") << tdm << false;
        QTest::newRow("no gametype") << QByteArray("<a/>") << true;
        QTest::newRow("gametype without a short name")
            << QByteArray("<a><Gametype><name>X</name></Gametype></a>") << true;
    }
    void nothingIsLoadedWithoutAChoice()
    {
        QFETCH(QByteArray, gametypes);
        QFETCH(bool, isMapSelected);
        Maps maps;
        maps.choose("Domination", "Ropeway");
        QVERIFY(maps.view.loadMapButton->isEnabled());
        maps.write("gametypes", gametypes);
        maps.loadCatalogues();
        if (!isMapSelected)
            maps.view.mapListController->selection()->clear();
        QVERIFY(!maps.view.loadMapButton->isEnabled());
        maps.view.loadMapButtonPressed();
        QCOMPARE(maps.sent(), QStringList());
        QCOMPARE(maps.alerts.texts(), QStringList{"Select a gametype and a map first."});
    }

    void thePickersFollowTheCatalogues()
    {
        Maps maps;
        const QAbstractItemModelTester tester(maps.view.mapListController);
        maps.choose("Domination", "Ropeway");
        maps.write("gametypes", "<a><Gametype><name>Domination</name><dvarName>old</dvarName></Gametype>"
                                "<Gametype><name>New</name><dvarName>n</dvarName></Gametype>"
                                "<Gametype><name>Domination</name><dvarName>dom2</dvarName></Gametype></a>");
        maps.write("maps", "<a><version>4.0</version><Map><name>Zoo</name><dvarName>mp_zoo</dvarName></Map>"
                           "<Map><name>Ropeway</name><dvarName>mp_r1</dvarName></Map>"
                           "<Map><name>Attic</name><dvarName>mp_attic</dvarName></Map>"
                           "<Map><name>Ropeway</name><dvarName>mp_r2</dvarName></Map></a>");
        maps.loadCatalogues();
        QCOMPARE(maps.listedMaps(), QStringList({"Zoo", "Attic", "Ropeway"})); // the file's order, the later of two
        QCOMPARE(maps.view.gametypePopUpButton->currentText(), QString("Domination"));
        QCOMPARE(maps.view.gametypePopUpButton->count(), 2);
        maps.exchange.answerEverything(ScriptedExchange::ok());
        maps.view.loadMapButton->click();
        QCOMPARE(maps.sent(), QStringList({"setadmindvar g_gametype \"dom2\"", "map mp_r2"}));
    }
};

QTEST_MAIN(MapsViewTest)
#include "tst_mapsview.moc"
