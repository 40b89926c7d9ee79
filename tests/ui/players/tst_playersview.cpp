#include "PlayersFixture.h"

class PlayersViewTest : public QObject
{
    Q_OBJECT
private slots:
    void aConnectFetchesTheListOnce_data()
    {
        QTest::addColumn<bool>("comesToTheFront"); // when the tabs are arranged in the middle of it
        QTest::newRow("brought to the front by it") << true;
        QTest::newRow("made on another tab") << false;
    }
    void aConnectFetchesTheListOnce()
    {
        QFETCH(bool, comesToTheFront);
        Players players;
        players.view.setInFront(false);
        if (comesToTheFront)
            connect(&players.server, &KelServer::dvarListChanged, &players.view, [&] {
                if (players.count() == 0)
                    players.view.setInFront(true);
            });
        awaited(players.server.connectToHost("192.0.2.1", "50960", "typed"));
        awaited(players.view.didConnect());
        if (!comesToTheFront) {
            QCOMPARE(players.sent().count("teamstatus"), 0);
            players.view.setInFront(true);
        }
        QCOMPARE(players.sent().count("teamstatus"), 1);
        QCOMPARE(players.count(), 3);
    }

    void nothingCanBePressedWithoutAConnection()
    {
        Players players;
        const auto enabled = [&players] {
            QStringList names;
            for (const char *button : {"refreshPlayersButton", "kickPlayerButton", "banPlayerButton",
                                       "tempBanPlayerButton", "messagePlayerButton", "kickAllButton"}) {
                if (players.isEnabled(button))
                    names.append(button);
            }
            return names;
        };
        players.select({"Ann"});
        QCOMPARE(enabled().size(), 6);
        players.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&players.view));
        control<QPushButton>(players.view, "messagePlayerButton")->setFocus();
        players.select({});
        QCOMPARE(players.view.focusWidget(), players.table); // and not "Kick All…"
        players.exchange.hold();
        players.press("refreshPlayersButton");
        players.server.disconnect();
        QCOMPARE(enabled(), QStringList());
        players.exchange.release(); // comes after the end
        QVERIFY(players.settle());
        QCOMPARE(players.count(), 0);
    }

    void anIncompleteListRemovesNobodyAndIsReadAgainBeforeUse()
    {
        Players players;
        players.list(title + line(1, "Ann") + line(2, "Bob") + line(3, "Cy"));
        players.refresh();
        players.select({"Bob"});
        players.list(title + lineOf(2, "Ann", 1) + line(4, "Dot") + "5 0 4"); // Bob is missing, and his number taken
        players.refresh();
        QStringList all = players.shown();
        all.sort();
        QCOMPARE(all, QStringList({"Ann", "Bob", "Cy", "Dot"}));
        QCOMPARE(players.selected(), QStringList{"Bob"});
        players.exchange.forgetSent();
        players.list(title + lineOf(2, "Ann", 1) + lineOf(1, "Bob", 2));
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList({"teamstatus", "clientkick 1"}));
        QCOMPARE(players.count(), 2); // the whole list removes who is gone
    }

    void theAgeOfTheListIsTold()
    {
        Players players;
        players.view.show();
        players.now += 3599s;
        QTRY_COMPARE(players.told(), QString("3 shown · 0 selected · list 59 min old")); // by itself
        players.server.disconnect();
        players.connectToServer();
        QCOMPARE(players.told(), QString("0 shown · 0 selected")); // no list has come yet
        players.exchange.hold();
        players.press("refreshPlayersButton");
        players.now += 4s; // a slow server tells how it was when it was asked
        players.exchange.release();
        QVERIFY(players.settle());
        QCOMPARE(players.told(), QString("3 shown · 0 selected · list 4 s old"));
    }

    void aRefreshKeepsWhoIsSelectedSortedAndFiltered()
    {
        Players players;
        players.table->sortByColumn(5, Qt::DescendingOrder);
        QCOMPARE(players.shown(), QStringList({"Bob", "Ann", "Cy"})); // 10, 9, 8: numbers, not texts
        players.select({"Ann", "Cy"});
        players.list(line(4, "Dot", 100) + line(3, "Cy", 20) + line(1, "Eve", 7));
        players.refresh();
        QCOMPARE(players.shown(), QStringList({"Dot", "Cy", "Eve"}));
        QCOMPARE(players.selected(), QStringList{"Cy"}); // Ann is gone, Eve is somebody else
        players.filter("dot");
        QCOMPARE(players.shown(), QStringList{"Dot"});
        players.refresh();
        QCOMPARE(players.shown(), QStringList{"Dot"});
        QCOMPARE(players.count(), 3);
    }

    void aRefreshThatWaitsWhileThePasswordIsRefusedIsNotSent()
    {
        Players players;
        control<QCheckBox>(players.view, "autoUpdatePlayers")->setChecked(true);
        players.exchange.answerEverything(ScriptedExchange::failure("", RConResultInvalidPassword));
        players.exchange.forgetSent();
        players.exchange.hold();
        players.select({"Ann"});
        players.press("kickPlayerButton");
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        emit players.view.findChild<QTimer *>("autoupdatePlayerTimer")->timeout({});
        players.exchange.release();
        QVERIFY(players.settle());
        QCOMPARE(players.server.link().kind(), Link::Kind::Refused);
        QCOMPARE(players.exchange.sent().size(), 1);
    }

    void aRefreshThatWaitsIsNotDoubled()
    {
        Players players;
        players.exchange.hold();
        players.select({"Ann"});
        players.press("kickPlayerButton");
        for (int i = 0; i < 3; ++i)
            players.view.refreshPlayersButtonPressed();
        players.exchange.release();
        QTRY_COMPARE(players.exchange.sent().size(), 2);
        players.view.refreshPlayersButtonPressed(); // the first is under way: this one fetches what it misses
        QVERIFY(players.answerInOrder({"teamstatus", "teamstatus"}));
        QCOMPARE(players.exchange.sent().size(), 3);
    }

    void rowsComeWithTheirDatagrams()
    {
        Players players;
        players.exchange.hold();
        players.press("refreshPlayersButton");
        QTRY_COMPARE(players.exchange.keptCount(), 1);
        players.exchange.arrive(title + line(1, "Ann", 20) + line(4, "Dora") + "5 0 48 g5 Ev");
        QTRY_COMPARE(players.count(), 4); // Bob and Cy may be in the part that is still to come
        QVERIFY(players.shown().contains("Dora") && !players.shown().contains("Ev"));
        players.list(title + line(1, "Ann", 20) + line(4, "Dora"));
        players.exchange.release();
        QVERIFY(players.settle());
        QCOMPARE(players.shown(), QStringList({"Ann", "Dora"}));
    }

    void aTimerAsksNobodyWhoDoesNotAnswer()
    {
        Players players;
        control<QCheckBox>(players.view, "autoUpdatePlayers")->setChecked(true);
        auto *timer = control<QTimer>(players.view, "autoupdatePlayerTimer");
        timer->stop();
        players.refresh();
        QVERIFY(timer->isActive()); // each list counts anew
        players.exchange.answer("teamstatus", ScriptedExchange::failure());
        players.refresh();
        QCOMPARE(players.server.link().kind(), Link::Kind::Silent);
        players.exchange.forgetSent();
        emit timer->timeout({});
        QVERIFY(players.actions.isIdle());
        players.view.setInFront(false);
        players.view.setInFront(true);
        QVERIFY(players.actions.isIdle());
        players.press("refreshPlayersButton"); // a person may
        QCOMPARE(players.sent(), QStringList{"teamstatus"});
    }

    void savesTheListInItsOrderAndAsksBeforeItReplaces()
    {
        Players players;
        players.table->sortByColumn(5, Qt::DescendingOrder);
        players.filter("ann");
        players.press("savePlayerListButton");
        auto *panel = control<QFileDialog>(players.view, "savePlayerListPanel");
        const QString path = players.folder.filePath("list.csv");
        emit panel->fileSelected(path);
        panel->close();
        QVERIFY(players.settle());
        players.filter({});
        players.table->sortByColumn(0, Qt::AscendingOrder);
        players.alerts.answerWith(1);
        awaited(players.view.savePlayerListTo(path, {}));
        awaited(players.view.savePlayerListTo(players.folder.filePath("absent/list.csv"), {}));
        QCOMPARE(players.alerts.titles(), QStringList({"Replace File", "Save Failed"}));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().endsWith("2,Bob,g2,192.0.2.2:50074,lamps,10,48\n"
                                        "1,Ann,g1,192.0.2.1:50074,lamps,9,48\n"
                                        "3,Cy,g3,192.0.2.3:50074,lamps,8,48\n"));
    }
};

QTEST_MAIN(PlayersViewTest)
#include "tst_playersview.moc"
