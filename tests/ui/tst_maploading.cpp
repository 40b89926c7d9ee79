#include "MapsFixture.h"

#include <QAbstractItemModelTester>

class MapLoadingTest : public QObject
{
    Q_OBJECT
private slots:
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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), sent);
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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList());
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
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList({"setadmindvar g_gametype \"dom2\"", "map mp_r2"}));
    }
};

QTEST_MAIN(MapLoadingTest)
#include "tst_maploading.moc"
