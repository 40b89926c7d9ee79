#include "PlayersFixture.h"

/// Whom a command hits, and whom it must not.
class PlayerCommandsTest : public QObject
{
    Q_OBJECT
private slots:
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
};

QTEST_MAIN(PlayerCommandsTest)
#include "tst_playercommands.moc"
