#include "Controls.h"
#include "PlaceholderTable.h"
#include "PlayerSendMessage.h"
#include "PlayersView.h"
#include "SessionFixture.h"
#include "TestPreferences.h"

#include <QAbstractProxyModel>
#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

using namespace std::chrono_literals;

/// A player whose address ends in `host`.
static QString lineOf(int number, const QString &name, int host, int score = 0)
{
    return QStringLiteral("%1 %4 48 g%3 %2 lamps 0 192.0.2.%3:50074 77 25000\n")
        .arg(number)
        .arg(name)
        .arg(host)
        .arg(score);
}

static QString line(int number, const QString &name, int score = 0)
{
    return lineOf(number, name, number, score);
}

static const QString title = QStringLiteral("num score ping guid name team lastmsg address qport rate\n");

/// A connected session with three players in the list.
struct Players : SessionFixture {
    Players()
    {
        connectToServer();
        exchange.answerEverything(ScriptedExchange::ok());
        list(line(1, "Ann", 9) + line(2, "Bob", 10) + line(3, "Cy", 8));
        view.setInFront(true);
        refresh();
        exchange.forgetSent();
    }

    void list(const QString &reply) { exchange.answer("teamstatus", ScriptedExchange::ok(reply)); }
    void press(const char *button) { control<QPushButton>(view, button)->click(); }
    void refresh()
    {
        press("refreshPlayersButton");
        QVERIFY(settle());
    }
    void filter(const QString &text) { control<QLineEdit>(view, "playerFilterField")->setText(text); }
    void select(const QStringList &names)
    {
        QItemSelectionModel *selection = table->selectionModel();
        selection->clear();
        for (int row = 0; row < table->model()->rowCount(); ++row) {
            const QModelIndex name = table->model()->index(row, 1);
            if (names.contains(name.data().toString()))
                selection->select(name, QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    QStringList selected() const
    {
        QStringList names;
        for (const QModelIndex &name : table->selectionModel()->selectedRows(1))
            names.append(name.data().toString());
        return names;
    }
    QStringList shown() const
    {
        QStringList names;
        for (const QStringList &texts : shownRows(*table))
            names.append(texts.at(1));
        return names;
    }
    /// How many there are with those that the filter hides.
    int count() const { return qobject_cast<QAbstractProxyModel *>(table->model())->sourceModel()->rowCount(); }

    bool isEnabled(const char *button) const { return control<QPushButton>(view, button)->isEnabled(); }
    QString told() const { return control<QLabel>(view, "playerCountLabel")->text(); }

    std::chrono::steady_clock::time_point now{1h};
    TestPreferences preferences{folder};
    PlayersView view{server, actions, alerts, preferences, nullptr, [this] {
                         return now;
                     }};
    PlaceholderTable *table = control<PlaceholderTable>(view, "playersTableView");
};

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

    void whoeverHasTheNumberNowIsNotHitForAnother()
    {
        Players players;
        players.exchange.hold();
        players.press("refreshPlayersButton");
        players.select({"Ann"});
        players.press("kickPlayerButton");                       // waits behind the refresh
        players.select({"Bob"});                                 // too late
        players.list(lineOf(2, "Ann", 1) + lineOf(1, "Bob", 2)); // they have swapped their numbers
        QVERIFY(players.answerInOrder({"teamstatus", "clientkick 2"}));
        QVERIFY(players.alerts.shown().isEmpty());
    }

    void aPlayersNumberIsLookedUpBeforeEachCommand()
    {
        Players players;
        players.exchange.hold();
        const QCoro::Task<> refresh = players.view.updatePlayerList();
        players.select({"Ann", "Bob", "Cy"});
        players.press("kickPlayerButton");
        QCOMPARE(players.exchange.keptCount(), 2);
        players.list(line(1, "Ann") + lineOf(7, "Bob", 2) + line(2, "New")); // comes while Ann is being kicked
        for (const char *command : {"clientkick 1", "clientkick 7"}) {
            players.exchange.release();
            QTRY_VERIFY(players.exchange.sent().contains(command));
        }
        players.exchange.release();
        QCOMPARE(players.sent(), QStringList({"teamstatus", "clientkick 1", "clientkick 7"}));
        QCOMPARE(players.alerts.texts(),
                 QStringList{"The following player(s) failed to process the 'clientkick' command: \n"
                             "  Cy (is not in the list any more)"});
        QVERIFY(refresh.isReady());
    }

    void whoComesAfterAKickIsNotHitByTheNextPress_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("sent");
        QTest::newRow("a double press") << QString("kickPlayerButton") << QString("clientkick 2");
        QTest::newRow("after everybody") << QString("kickAllButton") << QString("kick all");
    }
    void whoComesAfterAKickIsNotHitByTheNextPress()
    {
        QFETCH(QString, first);
        QFETCH(QString, sent);
        Players players;
        players.select({"Bob"});
        players.list(line(1, "Ann") + lineOf(2, "New", 9)); // he gets the number that has become free
        players.press(first.toLatin1().constData());
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList({sent, "teamstatus"}));
        QVERIFY(players.alerts.texts().last().endsWith("\n  Bob (is not in the list any more)"));
    }

    void theListGetsOldWhileOthersAreHit()
    {
        Players players;
        players.list(lineOf(2, "New", 9) + lineOf(3, "Bob", 2));
        players.select({"Ann", "Bob", "Cy"});
        players.exchange.hold();
        players.press("kickPlayerButton");
        players.now += 6s;
        QVERIFY(players.answerInOrder({"clientkick 1", "teamstatus", "clientkick 3"}));
        QVERIFY(players.alerts.texts().first().endsWith("\n  Cy (is not in the list any more)"));
    }

    void disconnectingWhileTheListIsReadAgainSendsNothing()
    {
        Players players;
        players.select({"Ann"});
        players.now += 6s;
        players.exchange.hold();
        players.press("kickPlayerButton");
        QCOMPARE(players.exchange.keptCount(), 1);
        players.actions.dropWaiting(); // the connection itself would refuse to send
        players.exchange.release();
        QCOMPARE(players.sent(), QStringList{"teamstatus"});
        QVERIFY(players.alerts.shown().isEmpty());
    }

    void nothingIsSentIfWhoHasWhichNumberIsUncertain_data()
    {
        QTest::addColumn<Reply>("reply");
        QTest::addColumn<QString>("reason");
        const QString incomplete = "It may have come incomplete. Try again.";
        QTest::newRow("no answer") << ScriptedExchange::failure(" lost\n") << "lost";
        QTest::newRow("a row is cut off") << ScriptedExchange::ok(title + line(1, "Ann") + "2 0 48 g2 B") << incomplete;
    }
    void nothingIsSentIfWhoHasWhichNumberIsUncertain()
    {
        QFETCH(Reply, reply);
        QFETCH(QString, reason);
        Players players;
        players.list(title + line(1, "Ann") + line(2, "Bob"));
        players.refresh();
        players.exchange.forgetSent();
        players.select({"Ann"});
        players.now += 6s;
        players.exchange.answer("teamstatus", reply);
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList{"teamstatus"});
        QCOMPARE(players.alerts.titles(), QStringList{"Remote Command Failure"});
        QCOMPARE(players.alerts.texts(),
                 QStringList{"Nothing was sent. The list of players is out of date, and it could not be read again to "
                             "see who has which number now.\n\n" +
                             reason});
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

    void aPlayerWithADoubleIsKnownByHisNumber_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("sent");
        QTest::addColumn<QString>("failure");
        const QString two = lineOf(1, "Bot", 9);
        const QString other = lineOf(4, "Bot", 9);
        const QString reason = "cannot be told from another player of this name and address";
        QTest::newRow("both are there") << two + other << QStringList{"clientkick 4"} << "";
        QTest::newRow("the other one is left") << two << QStringList() << reason;
        QTest::newRow("neither has his number") << two + lineOf(6, "Bot", 9) << QStringList() << reason;
    }
    void aPlayerWithADoubleIsKnownByHisNumber()
    {
        QFETCH(QString, list);
        QFETCH(QStringList, sent);
        QFETCH(QString, failure);
        Players players;
        players.list(lineOf(1, "Bot", 9) + lineOf(4, "Bot", 9));
        players.refresh();
        players.exchange.forgetSent();
        players.table->sortByColumn(0, Qt::AscendingOrder);
        players.table->selectRow(1);
        players.list(list);
        players.now += 6s;
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList{"teamstatus"} + sent);
        const QString head = "The following player(s) failed to process the 'clientkick' command: \n  Bot (";
        QCOMPARE(players.alerts.texts(), failure.isEmpty() ? QStringList() : QStringList{head + failure + ")"});
    }

    void whatIsCountedAsSelectedIsWhatIsHit()
    {
        Players players;
        players.select({"Ann", "Cy"});
        QCOMPARE(players.told(), QString("3 shown · 2 selected · list 0 s old"));
        players.filter("ann");
        QCOMPARE(players.told(), QString("1 shown · 2 selected (1 hidden by the filter) · list 0 s old"));
        players.alerts.answerWith(1);
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList()); // nobody is hit unseen
        QCOMPARE(players.alerts.titles(), QStringList{"Hidden Players Are Selected"});
        QVERIFY(players.alerts.texts().first().contains(": Cy\n"));
        QCOMPARE(players.alerts.manners().first().defaultButton, 1);
        players.alerts.answerWith(0);
        players.press("kickPlayerButton");
        QCOMPARE(players.sent(), QStringList({"clientkick 1", "clientkick 3"}));
        players.filter("bob");
        QCOMPARE(players.told(), QString("1 shown · 2 selected (2 hidden by the filter) · list 0 s old"));
        QVERIFY(players.isEnabled("kickPlayerButton"));
        players.table->selectRow(0); // a new choice
        QCOMPARE(players.told(), QString("1 shown · 1 selected · list 0 s old"));
        players.table->clearSelection();
        QVERIFY(!players.isEnabled("kickPlayerButton"));
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

    void sendsOneCommandForEachSelectedPlayer_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("kick") << "kickPlayerButton" << QStringList{"clientkick 1", "clientkick 3"};
        QTest::newRow("ban") << "banPlayerButton" << QStringList{"banclient 1", "banclient 3"};
        QTest::newRow("temp ban") << "tempBanPlayerButton" << QStringList{"tempbanclient 1", "tempbanclient 3"};
    }
    void sendsOneCommandForEachSelectedPlayer()
    {
        QFETCH(QString, button);
        Players players;
        players.select({"Ann", "Cy"});
        players.press(button.toLatin1().constData());
        QTEST(players.sent(), "sent");
    }

    void oneAlertTellsOfAllFailuresAndHoldsTheTurn()
    {
        Players players;
        players.exchange.answer("clientkick 1", ScriptedExchange::ok("kicked"));
        players.exchange.answer("clientkick 2", ScriptedExchange::ok(" \nclient 2 is not active\n\n"));
        players.exchange.answer("clientkick 3", ScriptedExchange::failure("lost"));
        players.alerts.hold();
        players.select({"Ann", "Bob", "Cy"});
        players.press("kickPlayerButton");
        QTRY_COMPARE(players.alerts.openCount(), 1);
        players.press("refreshPlayersButton");
        QTest::qWait(0);
        QCOMPARE(players.exchange.sent().size(), 3); // a batch goes on after a failure
        players.alerts.dismiss();
        QCOMPARE(players.sent().mid(3), QStringList({"teamstatus", "dvardump"})); // it answers again
        QCOMPARE(players.alerts.titles(), QStringList{"Remote Command Failure"});
        QCOMPARE(players.alerts.texts(),
                 QStringList{"The following player(s) failed to process the 'clientkick' command: \n"
                             "  Bob (client 2 is not active)\n  Cy (lost)"});
    }

    void kickAllAsksFirst()
    {
        Players players;
        players.exchange.answer("kick all", ScriptedExchange::failure("lost"));
        players.alerts.answerWith(1);
        players.press("kickAllButton");
        QCOMPARE(players.sent(), QStringList());
        players.alerts.answerWith(0);
        players.press("kickAllButton");
        QCOMPARE(players.sent(), QStringList{"kick all"});
        const RecordedAlerts::Shown question{
            "Please Confirm Command", "Do you really want to kick everyone?", {"Yes", "No"}};
        QCOMPARE(players.alerts.manners().first().defaultButton, 1);
        const RecordedAlerts::Shown failure{"Remote Command Failure", "KickAll returned an error: lost", {}};
        QCOMPARE(players.alerts.shown(), QList<RecordedAlerts::Shown>({question, question, failure}));
    }

    void nobodyIsKickedIfTheQuestionWasCalledOff()
    {
        Players players;
        players.alerts.hold();
        players.press("kickAllButton");
        players.actions.dropWaiting();
        players.alerts.dismiss(0);
        QCOMPARE(players.sent(), QStringList());
    }

    void thePanelSendsOnlyWhatIsMeantAndWhatTheGameCanHold()
    {
        Players players;
        players.select({"Cy"});
        auto *panel = control<PlayerSendMessage>(players.view, "playerSendMessagePanel");
        auto *field = control<QLineEdit>(*panel, "messageTextField");
        auto *sendButton = control<QPushButton>(*panel, "sendButton");
        field->setText("old");
        players.press("messagePlayerButton");
        QVERIFY(panel->messageString().isEmpty() && !sendButton->isEnabled());
        field->setText("see you");
        QTest::keyClick(panel, Qt::Key_Escape);
        QCOMPARE(players.sent(), QStringList());
        players.press("messagePlayerButton");
        field->setText(u"\u0436"_qs);
        QVERIFY(!sendButton->isEnabled()); // it would be lost with the panel
        QVERIFY(control<QLabel>(*panel, "unsendableLabel")->text().contains(u": \u0436. "_qs));
        field->setText(u"don\u2019t \"leave\" "_qs);
        QVERIFY(control<QLabel>(*panel, "unsendableLabel")->isHidden());
        sendButton->click();
        QCOMPARE(players.sent(), QStringList{"tell 3 don't \"leave\" "});
        QVERIFY(!panel->isVisible());
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

    void aMessageGoesToThoseItWasWrittenTo()
    {
        Players players;
        players.select({"Ann", "Cy"});
        players.press("messagePlayerButton");
        // Ann leaves, a newcomer gets her number, and Cy comes back under another one.
        players.list(line(1, "New") + "7 0 48 g3 Cy lamps 0 192.0.2.3:50074 77 25000\n");
        players.view.refreshPlayersButtonPressed();
        QVERIFY(players.settle());
        players.exchange.forgetSent();
        players.select({"New"}); // whom the sheet does not name
        control<QLineEdit>(players.view, "messageTextField")->setText("hello");
        players.press("sendButton");
        QCOMPARE(players.sent(), QStringList{"tell 7 hello"});
        QCOMPARE(players.alerts.texts(), QStringList{"The following player(s) failed to process the 'tell' command: \n"
                                                     "  Ann (is not in the list any more)"});
    }

    void whatWasCalledOffIsNotInTheWay()
    {
        Players players;
        players.exchange.hold();
        players.select({"Ann", "Bob"});
        players.press("kickPlayerButton");
        players.press("refreshPlayersButton"); // waits
        players.actions.dropWaiting();
        players.server.cancelExchange();
        QCOMPARE(players.sent(), QStringList{"clientkick 1"});
        QVERIFY(players.alerts.shown().isEmpty());
        players.press("refreshPlayersButton");
        QCOMPARE(players.exchange.sent().last(), QString("teamstatus"));
        players.exchange.release();
        QVERIFY(players.settle());
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
