#include "DataColumns.h"
#include "LoadedCatalogues.h"
#include "PlaylistFile.h"

/// Both lists, an entry a line.
static QString told(const PlaylistFile &file)
{
    QStringList lines;
    for (const PlaylistGametypeInst &gametype : file.gametypes)
        lines.append(gametype.uniqueName());
    for (const PlaylistInst &playlist : file.playlists)
        lines.append(playlist.uniqueName() + '|' + playlist.playlistDescription);
    return lines.join('\n');
}

static QString shown(const KelPlaylists &playlists)
{
    QStringList lines;
    for (const Exclusion &exclusion : playlists.exclusions())
        lines.append(exclusion.map_dvar + '/' + exclusion.gametype);
    return lines.join('\n');
}

/// All catalogues as they are shipped.
struct Shipped : LoadedCatalogues {
    Shipped() : LoadedCatalogues(FERROW_RESOURCES)
    {
        awaited(maps.loadMapList());
        awaited(gametypes.loadGametypeList());
        awaited(playlists.loadPlaylists());
    }
};

class PlaylistsTest : public QObject
{
    Q_OBJECT

private slots:
    void parses_data()
    {
        const auto row = dataColumns<QString, QString>("parsed", "text");
        row("both kinds", "All (alone)\nMix (id=7)|",
            "gametype  alone x\n\tname english \"All\"\n\nplaylist 7\r\n name english \"Mix\"\r\n\r\n");
        row("abandoned", "B (alone)", "playlist 1\nname english \"A\"\ngametype alone\nname english \"B\"\n\n");
        row("stakes", "", "playlist 1\nname english \"A\"\nwagerentry 1\nname english \"B\"\n\n");
        row("no number", "A (id=0)|", "playlist one\nname english \"A\"\n\n");
        row("description", "A (id=1)|Fast fun games",
            "playlist 1\nname english \"A\"\ndescription english \"Fast\\nfun  games\\n\"\n\n");
        row("no quote", "A (id=1)|", "playlist 1\nname english \"A\"\nname english B\ndescription english b\n\n");
        row("quote ends the line", "", "playlist 1\nname english \"\ndescription english \"\n\n");
    }
    void parses()
    {
        QFETCH(QString, text);
        QTEST(told(PlaylistFile::parse(text)), "parsed");
    }

    void refusesAFileThatIsTooLarge()
    {
        LoadedCatalogues loaded;
        const QString path = loaded.files.folders().resources + "/playlists_mp.info";
        loaded.playlists.playlistList.addObject({4, "A", ""});
        QVERIFY(ScriptedFolders::write(path, QByteArray(8 * 1024 * 1024 + 1, ' ')));
        awaited(loaded.playlists.loadPlaylists());
        QCOMPARE(loaded.session.alerts.titles(), QStringList("Playlists Not Loaded"));
        QVERIFY(loaded.playlists.playlistList.content().isEmpty());
    }

    void followsTheServer_data()
    {
        const auto row = dataColumns<QStringList, QString, QString>("values", "exclusions", "current");
        // values: playlist, maps, gametypes, pairs
        row("names", QStringList{"3", "ward_ropeway  ward_new", "alone new", "alone ward_ropeway new ward_new"},
            "Ropeway/<any gametype>\nward_new/<any gametype>\n<any map>/Every Lamp Alone\n"
            "<any map>/new\nRopeway/Every Lamp Alone\nward_new/new",
            "Docks and Beacons");
        row("quotes around", QStringList{"3.7", "\"\"ward_ropeway\"", "\"\"", "\"alone ward_millrace crews\""},
            "Ropeway/<any gametype>\nMillrace/Every Lamp Alone", "Docks and Beacons");
    }
    void followsTheServer()
    {
        QFETCH(QStringList, values);
        Shipped loaded;
        QCOMPARE(loaded.playlists.playlistList.content().size(), 9);
        awaited(loaded.session.connectTo({{"playlist", "1"}}));
        loaded.session.exchange.answerEverything(ScriptedExchange::ok());
        const QStringList names{"playlist", "playlist_excludeMap", "playlist_excludeGametype",
                                "playlist_excludeGametypeMap"};
        for (int i = 0; i < names.size(); ++i) // written, as a dump cannot hold such values
            awaited(loaded.session.server.setDvar(names.at(i), values.at(i)));
        loaded.playlists.addExclusion("not", "sent");
        awaited(loaded.catalogues.updateControls());
        QTEST(shown(loaded.playlists), "exclusions");
        const auto current = loaded.playlists.currentPlaylist();
        QTEST(current ? current->name : QString("-"), "current");
        awaited(loaded.session.connectTo({})); // which breaks off before the controls follow
        QVERIFY(loaded.playlists.exclusions().isEmpty() && !loaded.playlists.currentPlaylist());
    }

    void equalExclusionsAreRowsOfTheirOwn()
    {
        LoadedCatalogues loaded;
        awaited(loaded.session.connectTo({{"playlist_excludeMap", "a a a"}}));
        loaded.playlists.updateControls();
        ArrayController<Exclusion> &rows = loaded.playlists.exclusionListController;
        rows.selection()->select(rows.arranged()->index(1, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        loaded.playlists.updateControls(); // as a refresh does: it keeps what is selected, no more
        loaded.playlists.deleteSelection();
        QCOMPARE(shown(loaded.playlists), QString("a/<any gametype>\na/<any gametype>\n<any map>/b"));
    }
};

QTEST_GUILESS_MAIN(PlaylistsTest)
#include "tst_playlists.moc"
