#include "PlaceholderTable.h"
#include "PlayerSendMessage.h"
#include "PlayersView.h"
#include "SessionFixture.h"
#include "TestPreferences.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>

static QString line(int number, const QString &name, int score = 0)
{
    return QStringLiteral("%1 %3 48 g%1 %2 allies 0 10.0.0.%1:3074 77 25000\n").arg(number).arg(name).arg(score);
}

/// A connected session with three players in the list.
struct Players : SessionFixture {
    Players()
    {
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        list(line(1, "Ann", 9) + line(2, "Bob", 10) + line(3, "Cy", 8));
        view.setSelectedTabLabel("Players");
        refresh();
        exchange.forgetSent();
    }

    void list(const QString &reply) { exchange.answer("teamstatus", ScriptedExchange::ok(reply)); }
    void refresh()
    {
        view.refreshPlayersButton->click();
        QVERIFY(settle());
    }
    void select(const QStringList &names)
    {
        QItemSelectionModel *selection = view.playersController->selection();
        selection->clear();
        for (int row = 0; row < view.playersController->arranged()->rowCount(); ++row) {
            const QModelIndex name = view.playersController->arranged()->index(row, 1);
            if (names.contains(name.data().toString()))
                selection->select(name, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    QStringList shown() const
    {
        QStringList names;
        const ArrangedRows *rows = view.playersController->arranged();
        for (int row = 0; row < rows->rowCount(); ++row)
            names.append(rows->index(row, 1).data().toString());
        return names;
    }

    TestPreferences preferences{folder};
    PlayersView view{server, actions, alerts, preferences};
};

class PlayersViewTest : public QObject
{
    Q_OBJECT
private slots:
    void anotherServerStartsWithoutRows()
    {
        Players players;
        players.select({"Ann"});
        players.connectToServer();
        QVERIFY(players.view.playersController->content().isEmpty());
        QVERIFY(!players.view.kickPlayerButton->isEnabled());
    }

    void aRefreshKeepsWhoIsSelectedSortedAndFiltered()
    {
        Players players;
        const QAbstractItemModelTester tester(players.view.playersController->arranged());
        players.view.playersTableView->sortByColumn(5, Qt::DescendingOrder);
        QCOMPARE(players.shown(), QStringList({"Bob", "Ann", "Cy"})); // 10, 9, 8: numbers, not texts
        players.select({"Ann", "Cy"});
        players.list(line(4, "Dot", 100) + line(3, "Cy", 20) + line(1, "Eve", 7));
        players.refresh();
        QCOMPARE(players.shown(), QStringList({"Dot", "Cy", "Eve"}));
        QCOMPARE(players.view.playersController->selectedObjects().size(), 1); // Ann is gone, Eve is somebody else
        players.view.playerFilterField->setText("dot");
        QCOMPARE(players.shown(), QStringList{"Dot"});
        players.refresh();
        QCOMPARE(players.shown(), QStringList{"Dot"});
        QCOMPARE(players.view.playersController->content().size(), 3);
    }

    void sendsOneCommandForEachSelectedPlayer_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("sent");
        QTest::addColumn<int>("refreshAfter");
        QTest::newRow("kick") << "kickPlayerButton" << QStringList{"clientkick 1", "clientkick 3"} << 5000;
        QTest::newRow("ban") << "banPlayerButton" << QStringList{"banclient 1", "banclient 3"} << 5000;
        QTest::newRow("temp ban") << "tempBanPlayerButton" << QStringList{"tempbanclient 1", "tempbanclient 3"} << 1000;
    }
    void sendsOneCommandForEachSelectedPlayer()
    {
        QFETCH(QString, button);
        QFETCH(int, refreshAfter);
        Players players;
        players.select({"Ann", "Cy"});
        QElapsedTimer clock;
        clock.start();
        players.view.findChild<QPushButton *>(button)->click();
        QVERIFY(players.settle());
        QTEST(players.exchange.sent(), "sent");
        QVERIFY(players.alerts.shown().isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(players.exchange.sent().last(), "teamstatus", 12000);
        QVERIFY(clock.elapsed() >= refreshAfter * 9 / 10);
        QVERIFY(players.settle());
    }

    void oneAlertTellsOfAllFailuresAndHoldsTheTurn()
    {
        Players players;
        players.exchange.answer("clientkick 1", ScriptedExchange::ok("kicked"));
        players.exchange.answer("clientkick 2", ScriptedExchange::ok(" \nclient 2 is not active\n\n"));
        players.exchange.answer("clientkick 3", ScriptedExchange::failure("lost"));
        players.alerts.hold();
        players.select({"Ann", "Bob", "Cy"});
        players.view.kickPlayerButton->click();
        QTRY_COMPARE(players.alerts.openCount(), 1);
        players.view.refreshPlayersButton->click();
        QTest::qWait(0);
        QCOMPARE(players.exchange.sent().size(), 3); // a batch goes on after a failure
        players.alerts.dismiss();
        QCOMPARE(players.sent().last(), "teamstatus");
        QCOMPARE(players.alerts.titles(), QStringList{"Remote Command Failure"});
        QCOMPARE(players.alerts.texts(),
                 QStringList{"The following player(s) failed to process the 'clientkick' command: \n"
                             "  Bob (client 2 is not active)\n  Cy (lost)"});
    }

    void whoWasSelectedAtThePressIsKicked()
    {
        Players players;
        players.exchange.hold();
        players.view.refreshPlayersButton->click();
        players.select({"Ann"});
        players.view.kickPlayerButton->click(); // waits behind the refresh
        players.select({"Bob"});
        players.exchange.release();
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        QCOMPARE(players.exchange.sent(), QStringList({"teamstatus", "clientkick 1"}));
        players.exchange.release();
        QVERIFY(players.settle());
    }

    void disconnectingEndsABatchWithoutAnAlert()
    {
        Players players;
        players.exchange.hold();
        players.select({"Ann", "Bob", "Cy"});
        players.view.kickPlayerButton->click();
        players.view.refreshPlayersButton->click();
        QCOMPARE(players.exchange.keptCount(), 1);
        players.actions.dropWaiting();
        players.server.cancelExchange();
        players.server.disconnect();
        QCOMPARE(players.sent(), QStringList{"clientkick 1"});
        QVERIFY(players.alerts.shown().isEmpty());
    }

    void kickAllAsksFirst()
    {
        Players players;
        players.exchange.answer("kick all", ScriptedExchange::failure("lost"));
        players.alerts.answerWith(1);
        players.view.kickAllButton->click();
        QCOMPARE(players.sent(), QStringList());
        players.alerts.answerWith(0);
        players.view.kickAllButton->click();
        QCOMPARE(players.sent(), QStringList{"kick all"});
        const RecordedAlerts::Shown question{
            "Please Confirm Command", "Do you really want to kick everyone?", {"Yes", "No"}};
        const RecordedAlerts::Shown failure{"Remote Command Failure", "KickAll returned an error: lost", {}};
        QCOMPARE(players.alerts.shown(), QList<RecordedAlerts::Shown>({question, question, failure}));
    }

    void kickAllAsksAtOnceAndKeepsItsPlace()
    {
        Players players;
        players.exchange.hold();
        players.alerts.hold();
        players.view.refreshPlayersButton->click();
        players.view.kickAllButton->click();
        QCOMPARE(players.alerts.openCount(), 1); // while the refresh is still under way
        players.exchange.release();
        players.view.refreshPlayersButton->click();
        players.alerts.dismiss();
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        QCOMPARE(players.exchange.sent(), QStringList({"teamstatus", "kick all"}));
        players.exchange.release();
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        players.exchange.release();
        QVERIFY(players.settle());
    }

    void thePanelSendsOrNot()
    {
        Players players;
        players.select({"Cy"});
        PlayerSendMessage *panel = players.view.playerSendMessagePanel;
        for (const bool isSent : {false, true}) {
            panel->messageTextField->setText("old");
            players.view.messagePlayerButton->click();
            QVERIFY(panel->messageString().isEmpty());
            QVERIFY(!panel->sendButton->isEnabled());
            panel->messageTextField->setText("see \"you\" ");
            if (isSent)
                panel->sendButton->click();
            else
                QTest::keyClick(panel, Qt::Key_Escape);
            QVERIFY(players.settle());
            QVERIFY(!panel->isVisible());
            QCOMPARE(players.exchange.sent(), isSent ? QStringList{"tell 3 see \"you\" "} : QStringList());
        }
    }

    void aMessageGoesToThoseItWasWrittenTo()
    {
        Players players;
        players.select({"Ann", "Cy"});
        players.view.messagePlayerButton->click();
        // Ann leaves, a newcomer gets her number, and Cy comes back under another one.
        players.list(line(1, "New") + "7 0 48 g3 Cy allies 0 10.0.0.3:3074 77 25000\n");
        players.view.refreshPlayersButtonPressed();
        QVERIFY(players.settle());
        players.exchange.forgetSent();
        players.view.playerSendMessagePanel->messageTextField->setText("hello");
        players.view.playerSendMessagePanel->sendButton->click();
        QCOMPARE(players.sent(), QStringList{"tell 7 hello"});
        QCOMPARE(players.alerts.texts(), QStringList{"The following player(s) failed to process the 'tell' command: \n"
                                                     "  Ann (has left the server)"});
    }

    void theTimerFollowsThePreferenceAndEachRefresh()
    {
        Players players;
        QVERIFY(!players.view.autoupdatePlayerTimer.isActive());
        players.view.autoUpdatePlayersTime->setValue(7);
        players.view.autoUpdatePlayers->setChecked(true);
        QVERIFY(players.view.autoupdatePlayerTimer.isActive());
        QCOMPARE(players.view.autoupdatePlayerTimer.interval(), 7000);
        QCOMPARE(players.preferences.intValue("autoUpdatePlayersTime", 1, 99), 7);
        players.view.autoupdatePlayerTimer.stop();
        players.refresh();
        QVERIFY(players.view.autoupdatePlayerTimer.isActive());
        players.view.autoUpdatePlayers->setChecked(false);
        QVERIFY(!players.view.autoupdatePlayerTimer.isActive());
    }

    void aRefreshThatWaitsIsNotDoubled()
    {
        Players players;
        players.exchange.hold();
        players.select({"Ann"});
        players.view.kickPlayerButton->click();
        for (int i = 0; i < 3; ++i)
            players.view.refreshPlayersButtonPressed();
        players.exchange.release();
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        players.view.refreshPlayersButtonPressed(); // the first is under way: this one fetches what it misses
        players.exchange.release();
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        players.exchange.release();
        QCOMPARE(players.sent(), QStringList({"clientkick 1", "teamstatus", "teamstatus"}));
    }

    void savesTheListInItsOrder()
    {
        Players players;
        players.view.playersTableView->sortByColumn(5, Qt::DescendingOrder);
        players.view.playerFilterField->setText("ann");
        players.view.savePlayerListButton->click();
        auto *panel = players.view.findChild<QFileDialog *>("savePlayerListPanel");
        QVERIFY(panel != nullptr);
        const QString path = players.folder.filePath("list.csv");
        emit panel->fileSelected(path);
        panel->close();
        QVERIFY(players.settle());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.endsWith("2,Bob,g2,10.0.0.2:3074,allies,10,48\n"
                              "1,Ann,g1,10.0.0.1:3074,allies,9,48\n"
                              "3,Cy,g3,10.0.0.3:3074,allies,8,48\n"));
    }

    void savingAsksBeforeItReplacesAndTellsOfFailures()
    {
        Players players;
        const QString path = players.folder.filePath("list.txt");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("old");
        file.close();
        players.alerts.answerWith(1);
        awaited(players.view.savePlayerListTo(path, {}));
        QCOMPARE(players.alerts.titles(), QStringList{"Replace File"});
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("old"));
        awaited(players.view.savePlayerListTo(players.folder.filePath("absent/list.txt"), {}));
        QCOMPARE(players.alerts.titles(), QStringList({"Replace File", "Save Failed"}));
    }
};

QTEST_MAIN(PlayersViewTest)
#include "tst_playersview.moc"
