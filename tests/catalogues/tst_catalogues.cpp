#include "DataColumns.h"
#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "DvarSettingList.h"
#include "LoadedCatalogues.h"

static QStringList namesOf(const auto &lists)
{
    QStringList names;
    for (const auto &each : lists)
        names.append(each->name());
    return names;
}

static QByteArray setting(const QByteArray &name, const QByteArray &dvar)
{
    return "<DvarSetting><name>" + name + "</name><dvar>" + dvar + "</dvar></DvarSetting>";
}

static QByteArray gametype(const QByteArray &name, const QByteArray &dvarName, const QByteArray &settings = {})
{
    return "<Gametype><name>" + name + "</name><dvarName>" + dvarName + "</dvarName>" + settings + "</Gametype>";
}

static QByteArray group(const QByteArray &name, const QByteArray &settings = {})
{
    return "<SettingInst><name>" + name + "</name>" + settings + "</SettingInst>";
}

static QByteArray map(const QByteArray &name, const QByteArray &dvarName, const QByteArray &more = {})
{
    return "<Map><name>" + name + "</name><dvarName>" + dvarName + "</dvarName>" + more + "</Map>";
}

static QByteArray maps(const QByteArray &content)
{
    return "<maps><version>4.0</version>" + content + "</maps>";
}

class CataloguesTest : public QObject
{
    Q_OBJECT
private slots:
    void loadsGametypes()
    {
        LoadedCatalogues loaded;
        loaded.loadGametypes("<any><version>1</version>" + gametype("Twice", "first") + "<deeper>" +
                             gametype("Team", "crews") + gametype("Also Team", "crews") + "</deeper>" +
                             gametype("Twice", "second") + "<Gametype><name>Short</name></Gametype>" +
                             "<deeper><version>2</version></deeper></any>");
        const KelGametype &gametypes = loaded.gametypes;
        QCOMPARE(namesOf(gametypes.arrangedGametypes()), QStringList({"Twice", "Team", "Also Team", "Twice", "Short"}));
        QCOMPARE(gametypes.gametypeList().size(), 4);
        QCOMPARE(gametypes.findGametypeByDvar("crews"), QString("Team"));
        QCOMPARE(gametypes.findGametypeByDvar("CREWS"), QString("CREWS"));
        QCOMPARE(gametypes.findGametypeByDvar("first"), QString("first")); // the later of the two took its place
        QCOMPARE(gametypes.findGametypeByName("Twice")->dvarName(), QString("second"));
        QVERIFY(!gametypes.findGametypeByName("crews"));
    }

    void findsGametypesByFormerNames()
    {
        LoadedCatalogues loaded;
        QVERIFY(loaded.files.write(loaded.files.folders().resources + "/former.names", "Old\tNew\nKept\tNew\n"));
        KelGametype gametypes(loaded.session.server, loaded.reader);
        gametypes.takeDocument(*XmlDocument::parse("<g>" + gametype("New", "n") + gametype("Kept", "k") + "</g>"));
        QCOMPARE(gametypes.findGametypeByName("Old")->dvarName(), QString("n"));
        QCOMPARE(gametypes.findGametypeByName("Kept")->dvarName(), QString("k")); // a catalogue of the user's own
        QVERIFY(!gametypes.findGametypeByName("Never"));
    }

    void loadsSettings()
    {
        LoadedCatalogues loaded;
        loaded.loadSettings("<s><version>7</version>" + group("Voip") + group("beta", setting("x", "1")) +
                            group("Gamma", setting("old", "2")) + group("Alpha") + group("Gamma", setting("new", "3")) +
                            group("voip2") + "</s>");
        QCOMPARE(loaded.settings.arrangedGroups(), QStringList({"beta", "Gamma", "Alpha", "voip2"})); // no Voip
        QCOMPARE(namesOf(loaded.settings.sortedSettingsValues()), QStringList({"Alpha", "beta", "Gamma", "voip2"}));
        QCOMPARE(namesOf(loaded.settings.settingsList().value("Gamma")->settings()), QStringList{"new"});
        QCOMPARE(loaded.settings.selectedSettingList(), QString("beta"));

        loaded.settings.setSelectedSettingList("Gamma");
        QCOMPARE(namesOf(loaded.settings.selectedSettings()), QStringList{"Gamma"});
        loaded.settings.setSelectedSettingList("no such group");
        QCOMPARE(loaded.settings.selectedSettings().size(), 0);
    }

    void loadsMaps()
    {
        LoadedCatalogues loaded;
        loaded.loadMaps(maps(map("Twice", "ward_first") + map("Quay", "ward_quay", "<name>Old Quay</name>") + "<more>" +
                             map("Mill", "ward_mill", "<excludeDvar>ex_mill</excludeDvar>") + "</more>" +
                             map("Twice", "ward_second")));
        const QList<MapInst> all = loaded.maps.arrangedMaps();
        QCOMPARE(all.size(), 4);
        QCOMPARE(all.at(1).name, QString("Old Quay")); // the last name counts
        QVERIFY(all.at(1).excludeDvar.isNull());
        QCOMPARE(all.at(2).excludeDvar, QString("ex_mill"));
        QCOMPARE(loaded.maps.list().size(), 3);
        QCOMPARE(loaded.maps.list().value("Twice").dvarName, QString("ward_second"));
        QCOMPARE(loaded.maps.findMapByDvar("ward_mill"), QString("Mill"));
        QCOMPARE(loaded.maps.findMapByDvar("WARD_MILL"), QString("WARD_MILL"));
        QCOMPARE(loaded.maps.findMapByDvar("ward_first"), QString("ward_first"));
    }

    void missingEndsTheProgram()
    {
        LoadedCatalogues loaded;
        RecordedAlerts &alerts = loaded.session.alerts;
        alerts.hold();
        QCoro::Task<> connecting = loaded.catalogues.loadCatalogues();
        QTRY_COMPARE(alerts.openCount(), 1);
        QCOMPARE(loaded.terminations, 0); // not before it was read
        alerts.dismiss();
        awaited(std::move(connecting));
        QCOMPARE(loaded.terminations, 1);
        QCOMPARE(alerts.titles(), QStringList("Required File is Missing"));
        // One alert while connecting, not two.
        const QString text = "Unable to find a valid '%1' file to load.\n\n- You need to re-download this application.";
        QCOMPARE(alerts.texts(), QStringList(text.arg("gametypes")));
    }

    void damagedKeepsWhatWasLoaded()
    {
        LoadedCatalogues loaded;
        loaded.loadGametypes("<g><version>1</version>" + gametype("Team", "crews", setting("a", "b")) + "</g>");
        loaded.loadSettings("<s>" + group("G") + "</s>");
        loaded.loadMaps(maps(map("Quay", "ward_quay")));
        const auto selected = loaded.gametypes.selectedSettingList();
        QCOMPARE(loaded.session.alerts.shown().size(), 0);

        const QByteArray damaged = "<g>\n<version>2</version><Gametype>";
        loaded.loadGametypes(damaged);
        loaded.loadSettings(damaged);
        loaded.loadMaps(damaged);
        QCOMPARE(loaded.session.alerts.titles(), QStringList(3, "Catalogue Not Loaded"));
        for (const QString &text : loaded.session.alerts.texts())
            QVERIFY2(text.contains("FerrowRcon.exe.") && text.contains("Line 2"), qPrintable(text));
        QCOMPARE(loaded.gametypes.selectedSettingList(), selected);
        QCOMPARE(loaded.settings.arrangedGroups(), QStringList{"G"});
        QCOMPARE(loaded.maps.findMapByDvar("ward_quay"), QString("Quay"));
        QCOMPARE(loaded.terminations, 0);
    }

    void connectingNamesTheVariablesOfTheMode_data()
    {
        const auto row = dataColumns<QString, QStringList>("ranked", "names");
        row("ranked", "2", QStringList({"a2", "z2", "z1", "z3"}));
        row("unranked", "1", QStringList({"a2", "z2", "z1", "z3", "g1", "g2"}));
    }
    void connectingNamesTheVariablesOfTheMode()
    {
        QFETCH(QString, ranked);
        LoadedCatalogues loaded;
        const ScriptedFolders &files = loaded.files;
        const QByteArray settings =
            "<s>" + group("Zoo", setting("one", "z1") + setting("Known", "z2") + setting("Two", "z3")) +
            group("attic", setting("b", "a2") + "<DvarSetting><name>none</name></DvarSetting>") + "</s>";
        const QString file = ranked == "2" ? "gameSettingsRanked" : "gameSettingsUnranked"; // the only one there is
        QVERIFY(files.write(files.shipped(file), settings));
        QVERIFY(
            files.write(files.shipped("gametypes"), "<g>" + gametype("T", "t", setting("lost", "g0")) +
                                                        gametype("S", "s", setting("x", "g1") + setting("y", "z1")) +
                                                        gametype("T", "t", setting("kept", "g2")) + "</g>"));
        loaded.session.server.setCatalogueLoader(&loaded.catalogues);
        awaited(loaded.session.connectTo({{"z2", "here"}}, ranked));
        QTEST(loaded.session.server.cataloguedDvars(), "names");
        QCOMPARE(loaded.session.exchange.sent(), QStringList{"dvardump"}); // they can wait
        QCOMPARE(loaded.session.alerts.titles(), QStringList());
    }
};

QTEST_GUILESS_MAIN(CataloguesTest)
#include "tst_catalogues.moc"
