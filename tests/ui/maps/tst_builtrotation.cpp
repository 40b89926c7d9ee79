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
        QTest::newRow("second write") << 1 << 2 << "'sv_mapRotationCurrent' returned an error: lost";
        QTest::newRow("start") << 2 << 3 << "'map_rotate' returned an error: lost";
    }
    void setsTheBuiltRotation()
    {
        QFETCH(int, failing);
        QFETCH(int, sent);
        Maps maps;
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Domination"}, {"Ropeway", "Domination"}}));
        awaited(maps.view.updateMapList(255));
        maps.exchange.forgetSent();
        const QString text = "gametype dom map mp_saltworks gametype dom map mp_ropeway";
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

    void tellsOfNamesThatTheGameCannotHold()
    {
        Maps maps;
        maps.write(QStringLiteral("maps"),
                   QString("<Maps><version>4.0</version><Map><name>New</name><dvarName>mp_ж</dvarName></Map></Maps>")
                       .toUtf8());
        awaited(maps.maps.loadMapList());
        awaited(maps.mapRotations.addEntries({{"New", "Domination"}}));
        maps.press("setBuiltRotationButton");
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList());
        QCOMPARE(maps.alerts.texts(), QStringList("'sv_mapRotation' returned an error: The game cannot show these "
                                                  "characters: \u0436. Nothing was sent."));
        QCOMPARE(maps.mapRotations.entries().size(), 1);
    }

    void refusesUnknownNames()
    {
        Maps maps;
        maps.choose("Domination", "Saltworks");
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Domination"}, {"Nowhere", "Domination"}}));
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
        awaited(maps.mapRotations.saveUIChanges("mine"));
        maps.press("copyToBuilderButton");
        QVERIFY(maps.settle());
        QStringList copied;
        for (const auto &entry : maps.mapRotations.entries())
            copied.append(entry->map + "/" + entry->gametype);
        QCOMPARE(copied, QStringList({"Ropeway/Team Match", "Millrace/Domination", "mp_new/Domination"}));
        QCOMPARE(control<ElidingLabel>(maps.view, "labelCurrentRotation")->text(), QString("Rotation: mine"));
        QVERIFY(maps.mapRotations.unsavedChanges());
    }
};

QTEST_MAIN(BuiltRotationTest)
#include "tst_builtrotation.moc"
