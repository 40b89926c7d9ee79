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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList({"g_gametype", "mapname"}));
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

    void sendsItsCommands_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("command");
        for (const auto &[button, command] : {std::pair("restartMapButton", "map_restart"),
                                              {"fastRestartMapButton", "fast_restart"},
                                              {"startNextMapButton", "map_rotate"}})
            QTest::newRow(command) << QString(button) << QString(command);
    }
    void sendsItsCommands()
    {
        QFETCH(QString, button);
        QFETCH(QString, command);
        Maps maps;
        maps.exchange.answer(command, ScriptedExchange::ok());
        auto *pressed = maps.view.findChild<QPushButton *>(button);
        pressed->click();
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList{command}); // and no refresh after it
        QCOMPARE(maps.alerts.shown().size(), 0);
        maps.exchange.answer(command, ScriptedExchange::failure("lost %1"));
        pressed->click();
        QVERIFY(maps.settle());
        maps.server.disconnect();
        pressed->click();
        QVERIFY(maps.settle());
        const QString text = QString("'%1' returned an error: ").arg(command);
        QCOMPARE(maps.alerts.titles(), QStringList({"Remote Command Failure", "Remote Command Failure"}));
        QCOMPARE(maps.alerts.texts(), QStringList({text + "lost %1", text + "Not connected to a game server."}));
        QCOMPARE(maps.exchange.sent().size(), 2);
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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent().size(), 1);
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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent().size(), 3);
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
};

QTEST_MAIN(MapsViewTest)
#include "tst_mapsview.moc"
