#include "CataloguesFixture.h"
#include "Controls.h"
#include "MapGametypePairWindowController.h"
#include "PlaylistsView.h"
#include "TestPreferences.h"

#include <QComboBox>
#include <QDataStream>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

/// A session on a server that plays list 3 and leaves out Ropeway, with the catalogues loaded.
struct Playlists : CataloguesFixture {
    explicit Playlists(bool isRanked = false)
    {
        awaited(maps.loadMapList());
        awaited(gametypes.loadGametypeList());
        awaited(playlists.loadPlaylists());
        const QString dump = "rcon_password \"s\"\nsv_hostname \"h\"\nsv_ranked \"%1\"\nplaylist_enabled \"1\"\n"
                             "playlist \"3\"\nplaylist_excludeMap \"mp_ropeway\"\nmapexclude_millrace \"1\"\n"
                             "playlist_excludeGametype \"\"\nplaylist_excludeGametypeMap \"\"\n";
        exchange.answer("dvardump", ScriptedExchange::ok(dump.arg(isRanked ? 2 : 1)));
        for (const char *name : {"playlist_excludeGametype", "playlist_excludeGametypeMap"})
            exchange.answer(name, ScriptedExchange::ok(R"("name" is: "" default: "")"));
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
        QTest::addColumn<int>("id"); // 0: none is selected
        QTest::addColumn<bool>("isRanked");
        QTest::addColumn<bool>("isFailing");
        QTest::addColumn<QStringList>("alerts");
        const QString queued = "The \"Mixed Teams\" playlist will begin as soon as the current map completes.";
        const QString failed = "'%1' returned an error: lost";
        QTest::newRow("unranked") << 7 << false << false << QStringList();
        QTest::newRow("none selected") << 0 << false << false << QStringList();
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
        if (id > 0)
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
        QCOMPARE(control<QLineEdit>(playlists.view, "currentPlaylistField")->text(), isFailing ? "Hold Your Ground"
                                                                                     : id == 0 ? ""
                                                                                               : "Mixed Teams");
        QCOMPARE(playlists.playlists.exclusions().size(), 1); // what the server has
    }

    void appliesExclusions_data()
    {
        QTest::addColumn<bool>("isRanked"); // a ranked server has Millrace out of play
        QTest::addColumn<QString>("added");
        QTest::addColumn<QStringList>("values");
        const QStringList empty{"", "", ""};
        QTest::newRow("none") << false << "" << empty;
        QTest::newRow("each kind") << false
                                   << "Millrace/Duel,Millrace/<any gametype>,<any map>/Domination,<any map>/Duel,"
                                      "<any map>/<any gametype>,Ropeway/Free for All"
                                   << QStringList{"mp_millrace", "dom duel", "duel mp_millrace dm mp_ropeway"};
        QTest::newRow("unknown") << true
                                 << "Millrace/<any gametype>,Millrace/Duel,mp_new/Duel,<any map>/new,Ropeway/new"
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
        playlists.exchange.answer("setadmindvar playlist_excludeGametype \"\"", ScriptedExchange::failure("lost"));
        control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
        playlists.playlists.addExclusion("Ropeway", "Duel"); // too late for what was pressed
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
                                                        "<dvarName>mp_ж</dvarName></Map></Maps>")
                                                    .toUtf8());
        awaited(playlists.maps.loadMapList());
        playlists.playlists.addExclusion("New", "<any gametype>");
        control<QPushButton>(playlists.view, "applyExclusionsButton")->click();
        QVERIFY(playlists.answerAll());
        QCOMPARE(playlists.alerts.texts(), QStringList("'playlist_excludeMap' returned an error: The game cannot show "
                                                       "these characters: ж. Nothing was sent."));
        QVERIFY(!playlists.exchange.sent().join(' ').contains("playlist_excludeMap "));
    }

    void calledOffNothingMoreHappens()
    {
        for (const char *buttonName : {"startPlaylistButton", "applyExclusionsButton"}) {
            for (const int openAlerts : {0, 1}) {
                Playlists playlists(true);
                playlists.exchange.answerEverything(ScriptedExchange::failure("lost"));
                playlists.playlists.addExclusion("Millrace", "Duel");
                playlists.alerts.hold();
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
        gametypes.setCurrentText("Duel");
        addButton->click();
        QVERIFY(picker.isVisible());
        QCOMPARE(control<QLineEdit>(picker, "addedField")->text(), QString("Added: Ropeway, Duel (2 so far)"));
        const QList<Exclusion> added = playlists.playlists.exclusions().sliced(1);
        QCOMPARE(added, QList<Exclusion>({{"Ropeway", "<any gametype>", 2}, {"Ropeway", "Duel", 3}}));
        control<QPushButton>(picker, "closeButton")->click();
        QVERIFY(!picker.isVisible());
    }

    void readsTheLayoutOfEarlierVersions()
    {
        Playlists playlists;
        TestPreferences preferences(playlists.folder);
        QHeaderView *lists = control<QTableView>(playlists.view, "playlistsTableView")->horizontalHeader();
        QHeaderView *exclusions = control<QTableView>(playlists.view, "exclusionsTableView")->horizontalHeader();
        preferences.setValue("window/playlists", QByteArray("\xff\xff\xff\xfe", 4));
        playlists.view.restoreLayout(preferences);
        QCOMPARE(lists->sectionSize(1), 215);
        lists->resizeSection(1, 123);
        exclusions->resizeSection(0, 145);
        const auto layout = [lists, exclusions] {
            QByteArray bytes;
            QDataStream stream(&bytes, QIODevice::WriteOnly);
            stream << lists->saveState() << exclusions->saveState();
            return bytes;
        };
        preferences.setValue("window/playlists", layout());
        lists->resizeSection(1, 99);
        exclusions->resizeSection(0, 99);
        playlists.view.restoreLayout(preferences);
        QCOMPARE(lists->sectionSize(1), 123);
        QCOMPARE(exclusions->sectionSize(0), 145);
        playlists.view.saveLayout(preferences);
        QCOMPARE(preferences.value("window/playlists").toByteArray(), layout());
    }
};

QTEST_MAIN(PlaylistsViewTest)
#include "tst_playlistsview.moc"
