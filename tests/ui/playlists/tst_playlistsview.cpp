#include "CataloguesFixture.h"
#include "Controls.h"
#include "DoubleClick.h"
#include "MapGametypePairWindowController.h"
#include "PlaylistsView.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

/// A session on a server that plays list 3, with the catalogues loaded.
struct Playlists : CataloguesFixture {
    /// @param excluded  the server's maps, gametypes and pairs: Ropeway alone, unless told.
    explicit Playlists(bool isRanked = false, const QStringList &excluded = {"ward_ropeway", "", ""})
    {
        awaited(maps.loadMapList());
        awaited(gametypes.loadGametypeList());
        awaited(playlists.loadPlaylists());
        const QString dump = "rcon_password \"s\"\nsv_hostname \"h\"\nsv_ranked \"%1\"\nplaylist_enabled \"1\"\n"
                             "playlist \"3\"\nclosed_millrace \"1\"\n";
        exchange.answer("dvardump", ScriptedExchange::ok(dump.arg(isRanked ? 2 : 1)));
        const QStringList names{"playlist_excludeMap", "playlist_excludeGametype", "playlist_excludeGametypeMap"};
        for (qsizetype i = 0; i < names.size(); ++i)
            exchange.answer(names.at(i), ScriptedExchange::ok("\"name\" is: \"\" in force: \"" + excluded.at(i) + '"'));
        connectToServer();
        playlists.updateControls();
        exchange.answerEverything(ScriptedExchange::ok());
        exchange.hold();
    }

    /// Answers until all actions have ended.
    bool answerAll()
    {
        return QTest::qWaitFor([this] {
            while (exchange.keptCount() > 0)
                exchange.release();
            return actions.isIdle();
        });
    }

    PlaylistsView view{server, actions, alerts, gametypes, maps, playlists};
};

class PlaylistsViewTest : public QObject
{
    Q_OBJECT
private slots:
    void startsAPlaylist_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("isRanked");
        QTest::addColumn<bool>("isFailing");
        QTest::addColumn<QStringList>("alerts");
        const QString queued = "The \"Crew Medley\" playlist will begin as soon as the current map completes.";
        const QString failed = "'%1' returned an error: lost";
        QTest::newRow("unranked") << 7 << false << false << QStringList();
        QTest::newRow("unranked, fails") << 7 << false << true
                                         << QStringList{failed.arg("playlist"), failed.arg("map_rotate")};
        QTest::newRow("ranked, fails") << 7 << true << true << QStringList{failed.arg("playlist"), queued};
    }
    void startsAPlaylist()
    {
        QFETCH(int, id);
        QFETCH(bool, isRanked);
        QFETCH(bool, isFailing);
        Playlists playlists(isRanked);
        auto *table = control<QTableView>(playlists.view, "playlistsTableView");
        if (isFailing)
            playlists.exchange.answerEverything(ScriptedExchange::failure("lost"));
        playlists.playlists.addExclusion("Millrace", Exclusion::anyGametype());
        table->selectRow(id - 1);
        control<QPushButton>(playlists.view, "startPlaylistButton")->click();
        table->selectRow(0); // too late for what was pressed
        QVERIFY(playlists.answerAll());
        QStringList commands{QString("setadmindvar playlist \"%1\"").arg(id)};
        if (!isRanked)
            commands.append("map_rotate");
        QCOMPARE(playlists.exchange.sent(), commands);
        QTEST(playlists.alerts.texts(), "alerts");
        QVERIFY(!isRanked || playlists.alerts.titles().last() == "Playlist Has Been Queued");
        QVERIFY(!isRanked || playlists.alerts.manners().last().isGoodNews);
        QCOMPARE(control<QLineEdit>(playlists.view, "currentPlaylistField")->text(),
                 isFailing ? "Docks and Beacons" : "Crew Medley");
        QCOMPARE(playlists.playlists.exclusions().size(), 1); // what the server has
    }

    void startsByDoubleClickOrReturn_data()
    {
        QTest::addColumn<int>("selected");  // a row, or -1
        QTest::addColumn<bool>("isReturn"); // else a double click on the fourth row
        QTest::addColumn<bool>("isConnected");
        QTest::addColumn<QString>("started");
        QTest::newRow("another row than the selected one") << 0 << false << true << "4";
        QTest::newRow("not connected") << 3 << false << false << "";
        QTest::newRow("Return") << 1 << true << true << "2";
        QTest::newRow("Return on nothing") << -1 << true << true << "";
    }
    void startsByDoubleClickOrReturn()
    {
        QFETCH(int, selected);
        QFETCH(bool, isReturn);
        QFETCH(bool, isConnected);
        QFETCH(QString, started);
        Playlists playlists;
        auto *table = control<QTableView>(playlists.view, "playlistsTableView");
        playlists.view.resize(700, 700);
        playlists.view.grab(); // lays out
        if (selected >= 0)
            table->selectRow(selected);
        if (!isConnected)
            playlists.server.disconnect();
        QCOMPARE(control<QPushButton>(playlists.view, "startPlaylistButton")->isEnabled(),
                 selected >= 0 && isConnected);
        if (isReturn) {
            for (const bool isRepeat : {false, true, true}) { // held down
                QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), isRepeat);
                QCoreApplication::sendEvent(table, &press);
            }
        } else {
            doubleClick(*table, table->visualRect(table->model()->index(3, 1)).center());
        }
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.exchange.sent(),
                 started.isEmpty() ? QStringList()
                                   : QStringList({"setadmindvar playlist \"" + started + '"', "map_rotate"}));
        QVERIFY(playlists.alerts.shown().isEmpty());
    }

    void appliesExclusions_data()
    {
        QTest::addColumn<bool>("isRanked"); // a ranked server has Millrace out of play
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("values");
        const QStringList empty{"", "", ""};
        QTest::newRow("each kind")
            << false
            << "Millrace/Duckboard,Millrace/<any gametype>,<any map>/Dock Watch,<any map>/Duckboard,"
               "<any map>/<any gametype>,Ropeway/Every Lamp Alone"
            << QStringList{"ward_millrace", "docks board", "board ward_millrace alone ward_ropeway"};
        QTest::newRow("unknown")
            << true << "Millrace/<any gametype>,Millrace/Duckboard,ward_new/Duckboard,<any map>/new,Ropeway/new"
            << empty;
    }
    void appliesExclusions()
    {
        QFETCH(bool, isRanked);
        QFETCH(QString, added);
        QFETCH(QStringList, values);
        Playlists playlists(isRanked);
        const auto *unsent = control<QLabel>(playlists.view, "unsentExclusionsLabel");
        auto *table = control<QTableView>(playlists.view, "exclusionsTableView");
        QVERIFY(unsent->text().isEmpty());
        table->selectRow(0);
        QTest::keyClick(table, Qt::Key_Backspace);
        for (const QString &pair : added.split(',', Qt::SkipEmptyParts))
            playlists.playlists.addExclusion(pair.section('/', 0, 0), pair.section('/', 1));
        QVERIFY(unsent->text().startsWith("Not yet applied"));
        playlists.exchange.answer("setadmindvar playlist_excludeGametype \"\"",
                                  ScriptedExchange::failure("lost", RConResultInvalidPacket));
        control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
        playlists.playlists.addExclusion("Ropeway", "Duckboard"); // too late for what was pressed
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.exchange.sent(),
                 QStringList({QString("setadmindvar playlist_excludeMap \"%1\"").arg(values.at(0)),
                              QString("setadmindvar playlist_excludeGametype \"%1\"").arg(values.at(1)),
                              QString("setadmindvar playlist_excludeGametypeMap \"%1\"").arg(values.at(2))}));
        const QString failure = "'playlist_excludeGametype' returned an error: lost";
        QCOMPARE(playlists.alerts.texts(), values.at(1).isEmpty() ? QStringList{failure} : QStringList());
        QVERIFY(unsent->text().isEmpty());
    }

    void whatCameFromTheServerGoesBackByItsOwnName_data()
    {
        QTest::addColumn<QStringList>("excluded");
        QTest::addColumn<QList<int>>("removed"); // rows
        QTest::addColumn<QStringList>("written");
        using Rows = QList<int>;
        const QStringList mixed{"ward_new ward_ropeway ward_newer", "new alone newer",
                                "new ward_new alone ward_ropeway alone ward_new"};
        QTest::newRow("as it came") << mixed << Rows() << mixed;
        QTest::newRow("some removed") << mixed << Rows{0, 4, 7}
                                      << QStringList{"ward_ropeway ward_newer", "new newer",
                                                     "new ward_new alone ward_new"};
        const QString odd = QString::fromUtf8("ward_\u00e9<b>&; %1,/'\\x");
        QTest::newRow("odd letters, and out of play")
            << QStringList{odd, odd, "alone ward_millrace"} << Rows() << QStringList{odd, odd, "alone ward_millrace"};
        QTest::newRow("a pair that breaks off")
            << QStringList{"", "", "new ward_new alone"} << Rows() << QStringList{"", "", "new ward_new"};
    }
    void whatCameFromTheServerGoesBackByItsOwnName()
    {
        QFETCH(QStringList, excluded);
        QFETCH(QList<int>, removed);
        QFETCH(QStringList, written);
        Playlists playlists(true, excluded); // Millrace is out of play there
        auto *table = control<QTableView>(playlists.view, "exclusionsTableView");
        for (const int row : removed)
            table->selectionModel()->select(table->model()->index(row, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        if (!removed.isEmpty())
            QTest::keyClick(table, Qt::Key_Delete);
        control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.exchange.sent(),
                 QStringList({QString("setadmindvar playlist_excludeMap \"") + written.at(0) + '"',
                              QString("setadmindvar playlist_excludeGametype \"") + written.at(1) + '"',
                              QString("setadmindvar playlist_excludeGametypeMap \"") + written.at(2) + '"'}));
    }

    void whatIsAddedAgainIsNoEdit()
    {
        Playlists playlists(false, {"ward_ropeway ward_millrace", "", ""});
        auto *table = control<QTableView>(playlists.view, "exclusionsTableView");
        auto *removeButton = control<QPushButton>(playlists.view, "removeExclusionButton");
        playlists.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&playlists.view));
        table->selectRow(0);
        removeButton->setFocus();
        QTest::keyClick(removeButton, Qt::Key_Space);
        QCOMPARE(playlists.view.focusWidget(), table); // not the next button
        const auto *unsent = control<QLabel>(playlists.view, "unsentExclusionsLabel");
        QVERIFY(!unsent->text().isEmpty());
        playlists.playlists.addExclusion("Ropeway", Exclusion::anyGametype());
        QVERIFY(unsent->text().isEmpty());
    }

    void picksPairs()
    {
        Playlists playlists(true);
        auto &picker = *control<MapGametypePairWindowController>(playlists.view, "mapGametypePairPanel");
        QComboBox &maps = *control<QComboBox>(picker, "mapsPopupButton");
        QComboBox &gametypes = *control<QComboBox>(picker, "gametypesPopupButton");
        auto *addButton = control<QPushButton>(picker, "addButton");
        control<QPushButton>(playlists.view, "addExclusionButton")->click();
        QCOMPARE(maps.currentText() + gametypes.currentText(), QString("<any map><any gametype>"));
        QCOMPARE(maps.findText("Millrace"), -1); // taken out of play
        QVERIFY(!addButton->isEnabled());
        maps.setCurrentText("Ropeway");
        addButton->click();
        gametypes.setCurrentText("Duckboard");
        addButton->click();
        QVERIFY(picker.isVisible());
        QCOMPARE(control<QLineEdit>(picker, "addedField")->text(), QString("Added: Ropeway, Duckboard (2 so far)"));
        const QList<Exclusion> added = playlists.playlists.exclusions().sliced(1);
        QCOMPARE(added, QList<Exclusion>({{"Ropeway", "<any gametype>", 2}, {"Ropeway", "Duckboard", 3}}));
        control<QPushButton>(picker, "closeButton")->click();
        QVERIFY(!picker.isVisible());
    }
};

QTEST_MAIN(PlaylistsViewTest)
#include "tst_playlistsview.moc"
