#include "LoadedCatalogues.h"
#include "PlaylistFile.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

class PlaylistsTest : public QObject
{
    Q_OBJECT

private slots:
    void parses_data();
    void parses();
    void refuses_data();
    void refuses();
    void followsTheServer_data();
    void followsTheServer();
    void keepsApartWhatWasNotSent();
    void forgetsTheServerBefore();
};

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

void PlaylistsTest::parses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parsed");
    const auto row = [](const char *name, const QString &text, const QString &parsed) {
        QTest::newRow(name) << text << parsed;
    };
    row("both kinds", "gametype  dm x\n\tname english \"All\"\n\nplaylist 7\r\n name english \"Mix\"\r\n\r\n",
        "All (dm)\nMix (id=7)|");
    row("no blank line at the end", "playlist 1\nname english \"A\"\n\nplaylist 2\nname english \"B\"", "A (id=1)|");
    row("line break at the end closes", "playlist 1\nname english \"A\"\n", "A (id=1)|");
    row("abandoned", "playlist 1\nname english \"A\"\ngametype dm\nname english \"B\"\n\n", "B (dm)");
    row("nameless", "playlist 1\ndescription english \"A\"\n\ngametype dm\n\n", "");
    row("stakes", "playlist 1\nname english \"A\"\nwagerentry 1\nname english \"B\"\n\n", "");
    row("bet", "playlist 1\nwagerbets\nname english \"A\"\n\n", "");
    row("no number", "playlist one\nname english \"A\"\n\n", "A (id=0)|");
    row("fraction", "playlist -3.9\nname english \"A\"\n\n", "A (id=-3)|");
    row("description", "playlist 1\nname english \"A\"\ndescription english \"Fast\\nfun  games\\n\"\n\n",
        "A (id=1)|Fast fun games");
    row("last character goes", "playlist 1\nname english \"A\" x\ndescription english \"bc\n\n", "A\"  (id=1)|b");
    row("no quote", "playlist 1\nname english \"A\"\nname english B\ndescription english b\n\n", "A (id=1)|");
    row("quote ends the line", "playlist 1\nname english \"A\"\nname english \"\ndescription english \"\n\n",
        "A (id=1)|");
    row("outside of a block", "name english \"A\"\n\nPlaylist 1\nname english \"B\"\n\nx playlist 2\n\n", "");
}

void PlaylistsTest::parses()
{
    QFETCH(QString, text);
    QTEST(told(PlaylistFile::parse(text)), "parsed");
}

void PlaylistsTest::refuses_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no file") << QByteArray();
    QTest::newRow("too large") << "playlist 1\nname english \"A\"\n\n" + QByteArray(8 * 1024 * 1024, ' ');
    QTest::newRow("no text") << QByteArray("playlist 1\nname english \"A\"\n\n\xc3");
}

void PlaylistsTest::refuses()
{
    QFETCH(QByteArray, content);
    LoadedCatalogues loaded;
    const QString path = loaded.files.folders().resources + "/playlists_mp.info";
    const QAbstractItemModelTester tester(&loaded.playlists.playlistList);
    QVERIFY(ScriptedFolders::write(path, "playlist 4\nname english \"A\"\n\ngametype a\nname english \"B\"\n\n"));
    QVERIFY(hasEnded(loaded.playlists.loadPlaylists()));
    QCOMPARE(loaded.playlists.playlistList.content().size(), 1);
    QVERIFY(QFile::remove(path));
    QVERIFY(content.isEmpty() || ScriptedFolders::write(path, content));
    QVERIFY(hasEnded(loaded.playlists.loadPlaylists()));
    QCOMPARE(loaded.session.alerts.titles(), QStringList("Playlists Not Loaded"));
    QVERIFY(loaded.session.alerts.texts().first().contains(path));
    QVERIFY(loaded.playlists.playlistList.content().isEmpty() && loaded.playlists.gametypeList.content().isEmpty());
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
        QVERIFY(hasEnded(maps.loadMapList()) && hasEnded(gametypes.loadGametypeList()));
        QVERIFY(hasEnded(playlists.loadPlaylists()));
    }
};

void PlaylistsTest::followsTheServer_data()
{
    QTest::addColumn<QString>("playlist");
    QTest::addColumn<QString>("maps");
    QTest::addColumn<QString>("gametypes");
    QTest::addColumn<QString>("pairs");
    QTest::addColumn<QString>("exclusions");
    QTest::addColumn<QString>("current");
    const auto row = [](const char *name, const QStringList &values, const QString &exclusions,
                        const QString &current) {
        QTest::newRow(name) << values.at(0) << values.at(1) << values.at(2) << values.at(3) << exclusions << current;
    };
    row("names", {"3", "mp_ropeway  mp_new", "dm new", "dm mp_ropeway new mp_new"},
        "Ropeway/<any gametype>\nmp_new/<any gametype>\n<any map>/Free for All\n<any map>/new\n"
        "Ropeway/Free for All\nmp_new/new",
        "Hold Your Ground");
    row("quotes around", {"3.7", "\"\"mp_ropeway\"", "\"\"", "\"dm mp_millrace tdm\""},
        "Ropeway/<any gametype>\nMillrace/Free for All", "Hold Your Ground");
    row("unknown number", {"21", "", "", "dm"}, "", "-"); // for stakes
    row("no number", {"three", " ", "\"", ""}, "", "-");
}

void PlaylistsTest::followsTheServer()
{
    QFETCH(QString, playlist);
    QFETCH(QString, maps);
    QFETCH(QString, gametypes);
    QFETCH(QString, pairs);
    Shipped loaded;
    QCOMPARE(loaded.playlists.playlistList.content().size(), 12);
    QVERIFY(hasEnded(loaded.session.connectTo({{"playlist", "1"}})));
    loaded.session.exchange.answerEverything(ScriptedExchange::ok());
    // Written, as a dump cannot hold such values.
    QVERIFY(hasEnded(loaded.session.server.setDvar("playlist_excludeMap", maps)));
    QVERIFY(hasEnded(loaded.session.server.setDvar("playlist_excludeGametype", gametypes)));
    QVERIFY(hasEnded(loaded.session.server.setDvar("playlist_excludeGametypeMap", pairs)));
    QVERIFY(hasEnded(loaded.session.server.setDvar("playlist", playlist)));
    loaded.playlists.addExclusion("not", "sent");
    QVERIFY(hasEnded(loaded.catalogues.updateControls()));
    QTEST(shown(loaded.playlists), "exclusions");
    const auto current = loaded.playlists.currentPlaylist();
    QTEST(current ? current->name : QString("-"), "current");
}

void PlaylistsTest::keepsApartWhatWasNotSent()
{
    Shipped loaded;
    QVERIFY(hasEnded(loaded.session.connectTo({})));
    KelPlaylists &playlists = loaded.playlists;
    const QAbstractItemModelTester tester(&playlists.exclusionListController);
    playlists.updateControls(); // two that name "-"
    QSignalSpy changes(&playlists, &KelPlaylists::hasUnsentExclusionsChanged);
    playlists.addExclusion("a", "b");
    playlists.addExclusion("a", "b"); // twice, and yet two rows
    QCOMPARE(changes, QList<QVariantList>{{true}});
    ArrayController<Exclusion> &rows = playlists.exclusionListController;
    rows.selection()->select(rows.arranged()->index(3, 0),
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    playlists.deleteSelection();
    QCOMPARE(shown(playlists).count("a/b"), 1);
    rows.selection()->select(rows.arranged()->index(0, 0),
                             QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    playlists.updateControls(); // what was there stays selected
    QCOMPARE(rows.selectedObjects().size(), 1);
    QCOMPARE(shown(playlists).count("a/b"), 0);
    QVERIFY(!playlists.hasUnsentExclusions());
}

void PlaylistsTest::forgetsTheServerBefore()
{
    Shipped loaded;
    QVERIFY(hasEnded(loaded.session.connectTo({{"playlist", "3"}})));
    loaded.playlists.updateControls();
    QVERIFY(loaded.playlists.currentPlaylist());
    QVERIFY(hasEnded(loaded.session.connectTo({}))); // which breaks off before the controls follow
    QVERIFY(loaded.playlists.exclusions().isEmpty() && !loaded.playlists.currentPlaylist());
}

QTEST_GUILESS_MAIN(PlaylistsTest)
#include "tst_playlists.moc"
