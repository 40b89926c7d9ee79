#include "CataloguesFixture.h"
#include "Controls.h"
#include "DoubleClick.h"
#include "MapGametypePairWindowController.h"
#include "PlaceholderTable.h"
#include "PlaylistsView.h"

#include <QComboBox>
#include <QHeaderView>
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
        QTest::addColumn<int>("selected"); // a row, or -1
        QTest::addColumn<int>("button");   // of the double click on the fourth row; none presses Return
        QTest::addColumn<bool>("isConnected");
        QTest::addColumn<QString>("started");
        QTest::newRow("another row than the selected one") << 0 << int(Qt::LeftButton) << true << "4";
        QTest::newRow("the selected row, which Control takes back") << 3 << int(Qt::LeftButton) << true << "4";
        QTest::newRow("right button") << 0 << int(Qt::RightButton) << true << "";
        QTest::newRow("not connected") << 3 << int(Qt::LeftButton) << false << "";
        QTest::newRow("Return") << 1 << int(Qt::NoButton) << true << "2";
        QTest::newRow("Return on nothing") << -1 << int(Qt::NoButton) << true << "";
        QTest::newRow("Return, not connected") << 1 << int(Qt::NoButton) << false << "";
    }
    void startsByDoubleClickOrReturn()
    {
        QFETCH(int, selected);
        QFETCH(int, button);
        QFETCH(bool, isConnected);
        QFETCH(QString, started);
        Playlists playlists;
        auto *table = control<QTableView>(playlists.view, "playlistsTableView");
        const auto *startButton = control<QPushButton>(playlists.view, "startPlaylistButton");
        playlists.view.resize(700, 700);
        playlists.view.grab(); // lays out
        QVERIFY(!startButton->isEnabled());
        if (selected >= 0)
            table->selectRow(selected);
        if (!isConnected)
            playlists.server.disconnect();
        QCOMPARE(startButton->isEnabled(), selected >= 0 && isConnected);
        const QPoint place = table->visualRect(table->model()->index(3, 1)).center();
        const Qt::KeyboardModifiers keys = selected == 3 ? Qt::ControlModifier : Qt::NoModifier;
        if (button == Qt::NoButton)
            QTest::keyClick(table, Qt::Key_Return);
        else
            doubleClick(*table, place, Qt::MouseButton(button), keys);
        if (button == Qt::LeftButton)
            table->selectRow(0); // too late for what was clicked
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.exchange.sent(),
                 started.isEmpty() ? QStringList()
                                   : QStringList({"setadmindvar playlist \"" + started + '"', "map_rotate"}));
        QVERIFY(playlists.alerts.shown().isEmpty());
    }

    void theExclusionsFollowTheConnection()
    {
        Playlists playlists(false, {"", "", ""});
        const auto *table = control<PlaceholderTable>(playlists.view, "exclusionsTableView");
        for (const bool isConnected : {true, false}) {
            if (!isConnected)
                playlists.server.disconnect();
            QVERIFY(table->placeholder().startsWith(isConnected ? "Nothing is excluded" : "Not connected"));
            for (const char *name : {"addExclusionButton", "applyExclusionsButton"})
                QCOMPARE(control<QPushButton>(playlists.view, name)->isEnabled(), isConnected);
        }
    }

    void heldDownReturnStartsOnce()
    {
        Playlists playlists;
        auto *table = control<QTableView>(playlists.view, "playlistsTableView");
        table->selectRow(1);
        for (const bool isRepeat : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, QString(), isRepeat);
            QCoreApplication::sendEvent(table, &press);
        }
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.exchange.sent(), QStringList({"setadmindvar playlist \"2\"", "map_rotate"}));
    }

    void aWordMarksTheCurrentPlaylist()
    {
        Playlists playlists;
        const auto *table = control<QTableView>(playlists.view, "playlistsTableView");
        QFont bold = table->font();
        bold.setBold(true);
        for (int row = 0; row < table->model()->rowCount(); ++row) {
            const QModelIndex name = table->model()->index(row, 1);
            const QString marked = name.data().toString() + " (current)";
            const int width = QFontMetrics(row == 2 ? bold : table->font()).horizontalAdvance(marked);
            QCOMPARE(table->sizeHintForIndex(name).width() >= width, row == 2);
        }
    }

    void appliesExclusions_data()
    {
        QTest::addColumn<bool>("isRanked"); // a ranked server has Millrace out of play
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("values");
        const QStringList empty{"", "", ""};
        QTest::newRow("none") << false << "" << empty;
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
        QVERIFY(!control<QPushButton>(playlists.view, "removeExclusionButton")->isEnabled());
        QTest::keyClick(table, Qt::Key_Delete); // a beep
        QCOMPARE(playlists.playlists.exclusions().size(), 1);
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

    void tellsOfExclusionsThatTheGameCannotHold()
    {
        Playlists playlists;
        playlists.write(QStringLiteral("maps"), QString("<Maps><version>4.0</version><Map><name>New</name>"
                                                        "<dvarName>ward_ж</dvarName></Map></Maps>")
                                                    .toUtf8());
        awaited(playlists.maps.loadMapList());
        playlists.playlists.addExclusion("New", "<any gametype>");
        control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.alerts.texts(), QStringList("'playlist_excludeMap' returned an error: The game cannot show "
                                                       "these characters: ж. Nothing was sent."));
        QVERIFY(!playlists.exchange.sent().join(' ').contains("playlist_excludeMap "));
    }

    void whatCameFromTheServerGoesBackByItsOwnName_data()
    {
        QTest::addColumn<QStringList>("excluded");
        QTest::addColumn<QList<int>>("removed"); // rows
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("written");
        using Rows = QList<int>;
        const QStringList mixed{"ward_new ward_ropeway ward_newer", "new alone newer",
                                "new ward_new alone ward_ropeway alone ward_new"};
        QTest::newRow("as it came") << mixed << Rows() << "" << mixed;
        QTest::newRow("one added") << mixed << Rows() << "Ropeway/Duckboard,Brickfield/<any gametype>"
                                   << QStringList{"ward_new ward_ropeway ward_newer ward_brickfield", "new alone newer",
                                                  "new ward_new alone ward_ropeway alone ward_new board ward_ropeway"};
        QTest::newRow("some removed") << mixed << Rows{0, 4, 7} << ""
                                      << QStringList{"ward_ropeway ward_newer", "new newer",
                                                     "new ward_new alone ward_new"};
        QTest::newRow("an unknown one twice")
            << QStringList{"ward_new ward_new", "", ""} << Rows{0} << "" << QStringList{"ward_new", "", ""};
        QTest::newRow("out of play") << QStringList{"ward_millrace", "", "alone ward_millrace"} << Rows() << ""
                                     << QStringList{"ward_millrace", "", "alone ward_millrace"};
        const QString odd = QString::fromUtf8("ward_\u00e9<b>&; %1,/'\\x");
        QTest::newRow("odd letters") << QStringList{odd, odd, "DM WARD_ROPEWAY"} << Rows() << ""
                                     << QStringList{odd, odd, "DM WARD_ROPEWAY"};
        QTest::newRow("a pair that breaks off")
            << QStringList{"", "", "new ward_new alone"} << Rows() << "" << QStringList{"", "", "new ward_new"};
    }
    void whatCameFromTheServerGoesBackByItsOwnName()
    {
        QFETCH(QStringList, excluded);
        QFETCH(QList<int>, removed);
        QFETCH(QString, added);
        QFETCH(QStringList, written);
        Playlists playlists(true, excluded); // Millrace is out of play there
        auto *table = control<QTableView>(playlists.view, "exclusionsTableView");
        for (const int row : removed)
            table->selectionModel()->select(table->model()->index(row, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        if (!removed.isEmpty())
            QTest::keyClick(table, Qt::Key_Delete);
        for (const QString &pair : added.split(',', Qt::SkipEmptyParts))
            playlists.playlists.addExclusion(pair.section('/', 0, 0), pair.section('/', 1));
        for (int time = 0; time < 2; ++time) { // once more of what the session holds after the first
            playlists.exchange.forgetSent();
            control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
            QVERIFY(playlists.answerAll());
            QCOMPARE(playlists.exchange.sent(),
                     QStringList({QString("setadmindvar playlist_excludeMap \"") + written.at(0) + '"',
                                  QString("setadmindvar playlist_excludeGametype \"") + written.at(1) + '"',
                                  QString("setadmindvar playlist_excludeGametypeMap \"") + written.at(2) + '"'}));
        }
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

    void aThirdClickOnATitleReturnsToTheServersOrder()
    {
        Playlists playlists(false, {"ward_ropeway ward_millrace", "", ""});
        auto *table = control<QTableView>(playlists.view, "exclusionsTableView");
        playlists.view.show();
        const QHeaderView *titles = table->horizontalHeader();
        QStringList orders;
        for (int click = 0; click < 4; ++click) {
            orders.append(shownTexts(*table).join(' '));
            QTest::mouseClick(titles->viewport(), Qt::LeftButton, {}, {20, titles->height() / 2});
        }
        QCOMPARE(orders, QStringList({"Ropeway Millrace", "Millrace Ropeway", "Ropeway Millrace", "Ropeway Millrace"}));
    }

    void calledOffNothingMoreHappens()
    {
        for (const char *buttonName : {"startPlaylistButton", "applyExclusionsButton"}) {
            for (const int openAlerts : {0, 1}) {
                Playlists playlists(true);
                playlists.exchange.answerEverything(ScriptedExchange::failure("lost"));
                playlists.playlists.addExclusion("Millrace", "Duckboard");
                playlists.alerts.hold();
                control<QTableView>(playlists.view, "playlistsTableView")->selectRow(0);
                control<QPushButton>(playlists.view, buttonName)->click();
                for (int i = 0; i < openAlerts; ++i)
                    playlists.exchange.release();
                QTRY_COMPARE(playlists.alerts.openCount(), openAlerts);
                playlists.actions.dropWaiting();
                playlists.server.cancelExchange();
                for (int i = 0; i < openAlerts; ++i)
                    playlists.alerts.dismiss();
                QVERIFY(playlists.settle());
                QCOMPARE(playlists.exchange.sent().size(), 1);
                QCOMPARE(playlists.alerts.shown().size(), openAlerts);
                QCOMPARE(playlists.playlists.exclusions().size(), 2);
            }
        }
    }

    void picksPairs()
    {
        using Mode = MapGametypePairWindowController::Mode;
        Playlists playlists(true);
        auto &picker = *control<MapGametypePairWindowController>(playlists.view, "mapGametypePairPanel");
        QComboBox &maps = *control<QComboBox>(picker, "mapsPopupButton");
        QComboBox &gametypes = *control<QComboBox>(picker, "gametypesPopupButton");
        auto *addButton = control<QPushButton>(picker, "addButton");
        picker.setMode(Mode::MapRotationEntry);
        maps.setCurrentText("Ropeway");
        QVERIFY(maps.itemText(0).isEmpty() && gametypes.itemText(0).isEmpty() && !addButton->isEnabled());
        maps.setCurrentIndex(0);
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
