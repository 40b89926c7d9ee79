#include "ElidingLabel.h"
#include "MapsFixture.h"

class BuiltRotationTest : public QObject
{
    Q_OBJECT
private slots:
    void setsTheBuiltRotation_data()
    {
        QTest::addColumn<int>("failing"); // which of the commands
        QTest::addColumn<int>("sent");
        QTest::addColumn<QString>("alert");
        QTest::newRow("all is well") << -1 << 6 << "";
        QTest::newRow("first write") << 0 << 1 << "'sv_mapRotation' returned an error: lost";
        QTest::newRow("start") << 2 << 3 << "'map_rotate' returned an error: lost";
    }
    void setsTheBuiltRotation()
    {
        QFETCH(int, failing);
        QFETCH(int, sent);
        Maps maps;
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Dock Watch"}, {"Ropeway", "Dock Watch"}}));
        awaited(maps.view.updateMapList(255));
        maps.exchange.forgetSent();
        const QString text = "gametype docks map ward_saltworks gametype docks map ward_ropeway";
        const QStringList commands{QString("setadmindvar sv_mapRotation \"%1\"").arg(text),
                                   QString("setadmindvar sv_mapRotationCurrent \"%1\"").arg(text), "map_rotate"};
        for (int i = 0; i < commands.size(); ++i)
            maps.exchange.answer(commands.at(i),
                                 i == failing ? ScriptedExchange::failure("lost") : ScriptedExchange::ok());
        maps.press("setBuiltRotationButton");
        QVERIFY(maps.settle());
        const QStringList all = commands + QStringList{"g_gametype", "mapname", "sv_mapRotation"};
        QCOMPARE(maps.exchange.sent(), all.first(sent));
        QTEST(maps.alerts.texts().join("|"), "alert");
        QCOMPARE(maps.rotation().isEmpty(), failing >= 0);
    }

    void asksBeforeAnEmptyRotationIsSet_data()
    {
        QTest::addColumn<int>("pressed");
        QTest::addColumn<bool>("isCalledOff"); // while the question is open
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("set") << 0 << false
                             << QStringList{"setadmindvar sv_mapRotation \"\"",
                                            "setadmindvar sv_mapRotationCurrent \"\"", "map_rotate"};
        QTest::newRow("cancel") << 1 << false << QStringList();
        QTest::newRow("set, after the connection has ended") << 0 << true << QStringList();
    }
    void asksBeforeAnEmptyRotationIsSet()
    {
        QFETCH(int, pressed);
        QFETCH(bool, isCalledOff);
        QFETCH(QStringList, sent);
        Maps maps;
        awaited(maps.view.updateMapList(255));
        maps.exchange.forgetSent();
        for (const QString &command : std::as_const(sent))
            maps.exchange.answer(command, ScriptedExchange::ok());
        maps.alerts.hold();
        maps.press("setBuiltRotationButton");
        QTRY_COMPARE(maps.alerts.openCount(), 1);
        QVERIFY(!maps.rotation().isEmpty());
        QCOMPARE(maps.alerts.titles(), QStringList("Set Empty Rotation"));
        QCOMPARE(maps.alerts.manners().last().defaultButton, 1);
        if (isCalledOff) {
            maps.actions.dropWaiting();
            maps.server.disconnect();
            maps.connectToServer(); // to another server
        }
        maps.alerts.dismiss(pressed);
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent().first(sent.size()), sent);
        QCOMPARE(maps.exchange.sent().isEmpty(), sent.isEmpty());
        QCOMPARE(maps.alerts.shown().size(), 1);
    }

    void refusesUnknownNames()
    {
        Maps maps;
        maps.choose("Dock Watch", "Saltworks");
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Dock Watch"}, {"Nowhere", "Dock Watch"}}));
        maps.press("setBuiltRotationButton");
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList());
        QCOMPARE(maps.alerts.titles(), QStringList("Rotation Not Set"));
        QVERIFY(maps.alerts.texts().first().contains("Nowhere"));
    }

    void copiesTheServersRotation()
    {
        Maps maps;
        awaited(maps.view.updateMapList(255));
        awaited(maps.mapRotations.addToRotation("Saltworks", "Dock Watch"));
        maps.alerts.answerWith(2); // "Cancel"
        maps.press("copyToBuilderButton");
        QVERIFY(maps.settle());
        QCOMPARE(maps.alerts.titles(), QStringList("Unsaved Changes to Map Rotation"));
        QCOMPARE(maps.mapRotations.rowCount(), 1);
        QVERIFY(awaited(maps.mapRotations.saveUIChanges("mine")));
        maps.press("copyToBuilderButton");
        QVERIFY(maps.settle());
        QStringList copied;
        for (const auto &entry : maps.mapRotations.entries())
            copied.append(entry->map + "/" + entry->gametype);
        QCOMPARE(copied, QStringList({"Ropeway/Two Crews", "Millrace/Dock Watch", "ward_new/Dock Watch"}));
        QCOMPARE(control<ElidingLabel>(maps.view, "labelCurrentRotation")->text(), QString("Rotation: mine"));
        QVERIFY(maps.mapRotations.hasUnsavedWork());
    }
};

QTEST_MAIN(BuiltRotationTest)
#include "tst_builtrotation.moc"
