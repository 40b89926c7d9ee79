#include "ConsoleView.h"
#include "Fixture.h"
#include "FormMainView.h"
#include "KeyHandlingTableView.h"
#include "MessagesView.h"
#include "PlaceholderTable.h"
#include "PlayersView.h"
#include "ProgressWindowController.h"
#include "RotationPane.h"
#include "ServersView.h"
#include "SheetAlerts.h"
#include "StatusLine.h"
#include "WelcomePage.h"

#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>

struct Window : Fixture {
    Window()
    {
        view.makeViews();
        exchange.answer(QStringLiteral("teamstatus"), ScriptedExchange::ok());
    }

    void fillForm(const QString &host, const QString &port, const QString &password)
    {
        view.serversView->fillForm(host, port);
        view.serversView->passwordField->setText(password);
    }
    void connectByForm()
    {
        fillForm(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), QStringLiteral("pw"));
        view.serversView->connectButton->click();
    }
    QString status() const { return view.statusLine->status(); }

    FormMainView view{server, actions, alerts, preferences, catalogues(), rotations(), savedServers};
};

class MainWindowTest : public QObject
{
    Q_OBJECT
private slots:
    void connectNeedsHostPortAndPassword_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<bool>("isEnabled");
        QTest::newRow("all") << QStringList{"h", "1", "p"} << true;
        QTest::newRow("blank counts") << QStringList{" ", "1", "p"} << true;
        QTest::newRow("no host") << QStringList{"", "1", "p"} << false;
        QTest::newRow("no port") << QStringList{"h", "", "p"} << false;
        QTest::newRow("no password") << QStringList{"h", "1", ""} << false;
    }
    void connectNeedsHostPortAndPassword()
    {
        QFETCH(QStringList, fields);
        QFETCH(bool, isEnabled);
        Window window;
        QVERIFY(!window.view.serversView->connectButton->isEnabled());
        window.fillForm(fields.at(0), fields.at(1), fields.at(2));
        QCOMPARE(window.view.serversView->connectButton->isEnabled(), isEnabled);
    }

    void tellsHowConnectingGoes()
    {
        Window window;
        QCOMPARE(window.status(), QStringLiteral("Not connected"));
        window.exchange.hold();
        window.connectByForm();
        QCOMPARE(window.status(), QStringLiteral("Connecting to QuickConnect..."));
        QVERIFY(!window.view.serversView->connectButton->isEnabled());
        window.view.serversView->portField->setText(QStringLiteral("28961"));
        QVERIFY(!window.view.serversView->connectButton->isEnabled()); // editing does not allow a second connect
        window.exchange.release();
        QTRY_COMPARE(window.exchange.keptCount(), 1); // the player list, at once
        QCOMPARE(window.status(), QStringLiteral("Connected to QuickConnect (Unranked)"));
        for (int i = 0; i < 4; ++i) {
            window.exchange.release();
            QTRY_VERIFY(window.exchange.keptCount() == 1 || window.actions.isIdle());
        }
        QVERIFY(window.settle());
        QVERIFY(window.view.serversView->connectButton->isEnabled());
        QCOMPARE(window.exchange.sent(),
                 QStringList({"dvardump", "teamstatus", "g_gametype", "mapname", "sv_mapRotation"}));
        window.view.serversView->disconnectButton->click();
        QCOMPARE(window.status(), QStringLiteral("Not connected"));
        QVERIFY(!window.server.isConnected());
    }

    void aFailedConnectKeepsTheForm()
    {
        Window window;
        window.exchange.forget(QStringLiteral("dvardump"));
        window.connectByForm();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), QStringLiteral("Not connected"));
        QCOMPARE(window.alerts.titles(), QStringList{"Command Send Error"});
        QCOMPARE(window.view.serversView->hostField->text(), QStringLiteral("10.0.0.1"));
        QCOMPARE(window.view.serversView->passwordField->text(), QStringLiteral("pw"));
        QVERIFY(window.view.welcomePage->isVisibleTo(&window.view));
    }

    void disconnectCallsOffWhatRunsAndWaits()
    {
        Window window;
        window.exchange.hold();
        window.connectByForm();
        window.view.connectTo(ConnectTarget{QStringLiteral("Other"), QStringLiteral("10.0.0.2"), QStringLiteral("1"),
                                            QStringLiteral("pw"), nullptr});
        window.view.serversView->disconnectButton->click();
        QVERIFY(window.settle());
        QCOMPARE(window.exchange.sent(), QStringList{"dvardump"});
        QVERIFY(window.alerts.shown().isEmpty());
        QCOMPARE(window.status(), QStringLiteral("Not connected"));
        QVERIFY(window.view.serversView->connectButton->isEnabled());
    }

    void theTabsFollowTheModeAndTheConsoleStaysInFront()
    {
        Window window;
        window.connectByForm();
        QVERIFY(window.settle());
        QTabWidget *tabs = window.view.tabControlMain;
        const auto labels = [&] {
            QStringList list;
            for (int i = 0; i < tabs->count(); ++i)
                list.append(tabs->tabText(i));
            return list.join(QLatin1Char(','));
        };
        QCOMPARE(labels(), QStringLiteral("Players,Maps,Settings,Messages,Config Builder,Console"));
        QCOMPARE(tabs->currentIndex(), 0);
        tabs->setCurrentIndex(5);
        QTest::keyClicks(window.view.consoleView->consoleInput, QStringLiteral("playlist_enabled 1"));
        QTest::keyClick(window.view.consoleView->consoleInput, Qt::Key_Return);
        QVERIFY(window.settle());
        QCOMPARE(labels(), QStringLiteral("Players,Playlists,Settings,Messages,Config Builder,Console"));
        QCOMPARE(tabs->currentIndex(), 5);
        window.exchange.forgetSent();
        window.view.playersView->refreshPlayersButtonPressed();
        QVERIFY(window.settle());
        QVERIFY(window.exchange.sent().isEmpty()); // the players' tab is not in front
    }

    void theConfigBuildersSecondVisitIsTold()
    {
        Window window;
        window.connectByForm();
        QVERIFY(window.settle());
        QSignalSpy again(&window.view, &FormMainView::configBuilderVisitedAgain);
        QList<int> told;
        for (int visit = 0; visit < 3; ++visit) {
            window.view.tabControlMain->setCurrentIndex(4);
            window.view.tabControlMain->setCurrentIndex(0);
            told.append(static_cast<int>(again.size()));
        }
        QCOMPARE(told, QList<int>({0, 1, 1}));
    }

    void aNewPasswordReachesTheForm()
    {
        Window window;
        window.exchange.answerEverything(ScriptedExchange::ok());
        window.connectByForm();
        QVERIFY(window.settle());
        awaited(window.server.setDvar(QStringLiteral("rcon_password"), QStringLiteral("new")));
        QCOMPARE(window.view.serversView->passwordField->text(), QStringLiteral("new"));
    }

    void asksForThePasswordThatTheCommandLineLacks()
    {
        Window window;
        window.view.show();
        window.view.quickConnect(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), {});
        auto *dialog = window.view.findChild<QInputDialog *>(QStringLiteral("passwordPanel"));
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->textEchoMode(), QLineEdit::Password);
        dialog->setTextValue(QStringLiteral("asked"));
        dialog->accept();
        QVERIFY(window.settle());
        QCOMPARE(window.exchange.requests().first().password, QStringLiteral("asked"));
    }

    void closingInTheMiddleEndsCleanly()
    {
        Window window;
        window.view.show();
        window.exchange.hold();
        window.connectByForm();
        window.view.close();
        QVERIFY(window.view.isVisible()); // not before the action has let go
        QTRY_VERIFY(!window.view.isVisible());
        QVERIFY(window.actions.isIdle());
        QVERIFY(window.alerts.shown().isEmpty());
        QCOMPARE(window.exchange.sent(), QStringList{"dvardump"});
    }

    void whatIsBeingTypedIsAskedAboutOnClosing()
    {
        Window window;
        const QString text(40000, QLatin1Char('a')); // more than a field takes by itself
        awaited(window.messageRotations.addMessageToCurrentRotation(text, QStringLiteral("3")));
        QVERIFY(awaited(window.messageRotations.saveUIChanges(QStringLiteral("n"))));
        window.view.show();
        window.connectByForm();
        QVERIFY(window.settle());
        window.view.tabControlMain->setCurrentWidget(window.view.messagesView);
        QVERIFY(QTest::qWaitForWindowActive(&window.view));
        QTableView *table = window.view.messagesView->rotationPane->tableView;
        table->setFocus();
        table->selectRow(0);
        QTest::keyClick(table, Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("b"));
        window.alerts.answerWith(2);
        window.view.close();
        QVERIFY(window.settle() && window.view.isVisible());
        QCOMPARE(window.alerts.titles(), QStringList{"Unsaved Changes to Map Rotation"});
        QVERIFY(window.messageRotations.entries().first()->message == text + QLatin1Char('b'));
    }

    void closingIsNotHeldUpByWhatComesDueMeanwhile()
    {
        Window window;
        window.view.show();
        window.connectByForm();
        QVERIFY(window.settle());
        window.exchange.hold();
        window.view.playersView->refreshPlayersButtonPressed();
        window.view.close();
        window.view.playersView->refreshPlayersButtonPressed(); // as a timer would
        QTRY_VERIFY(!window.view.isVisible());
        QVERIFY(window.actions.isIdle());
    }

    void whatWasMeantForTheServerBeforeIsNotSent()
    {
        Window window;
        window.exchange.answer(QStringLiteral("teamstatus"),
                               ScriptedExchange::ok(QStringLiteral("1 0 48 g Ann allies 0 10.0.0.1:3074 77 25000\n")));
        window.connectByForm();
        QVERIFY(window.settle());
        window.exchange.forgetSent();
        window.view.playersView->playersTableView->selectRow(0);
        window.exchange.hold();
        window.view.serversView->fillForm(QStringLiteral("10.0.0.2"), QStringLiteral("28960"));
        window.view.serversView->connectButton->click();
        window.view.playersView->kickPlayerButton->click(); // the players of the server before are still shown
        while (!window.actions.isIdle()) {
            if (window.exchange.keptCount() > 0)
                window.exchange.release();
            QTest::qWait(1);
        }
        QVERIFY(!window.exchange.sent().contains(QStringLiteral("clientkick 1")));
        QCOMPARE(window.server.host(), QStringLiteral("10.0.0.2"));
    }

    void theLayoutSurvivesARestart()
    {
        Window window;
        window.view.resize(1100, 777);
        window.view.show();
        window.view.playersView->playersTableView->sortByColumn(6, Qt::DescendingOrder);
        window.view.close();
        FormMainView again(window.server, window.actions, window.alerts, window.preferences, window.catalogues(),
                           window.rotations(), window.savedServers);
        again.makeViews();
        QCOMPARE(again.size(), QSize(1100, 777));
        QCOMPARE(again.playersView->playersController->arranged()->sortColumn(), 6);
    }

    void alertsTakeServerTextLiterallyAndKeepItShort()
    {
        QWidget window;
        window.show();
        SheetAlerts alerts;
        alerts.setWindow(&window);
        const QString word(70, QLatin1Char('a'));
        const QString text = word + QStringLiteral("\n<b>bold</b>").repeated(500);
        QCoro::Task<int> asking =
            alerts.run(QStringLiteral("Title"), text, {QStringLiteral("Yes"), QStringLiteral("No")});
        auto *box = window.findChild<QMessageBox *>(QStringLiteral("alert"));
        QVERIFY(box != nullptr);
        for (const QLabel *label : box->findChildren<QLabel *>())
            QVERIFY(label->textFormat() == Qt::PlainText || label->text().isEmpty() || !label->pixmap().isNull());
        QVERIFY(box->informativeText().size() < 1300);
        QVERIFY(box->width() > box->fontMetrics().horizontalAdvance(word));
        QCOMPARE(box->detailedText(), text);
        QTest::keyClick(box, Qt::Key_Escape);
        QCOMPARE(awaited(std::move(asking)), 1); // dismissing is the last button
    }

    void aProgressSheetShowsWhatWasSetBefore()
    {
        QWidget window;
        window.show();
        ProgressWindowController progress;
        progress.setTitle(QStringLiteral("Loading configuration..."));
        progress.setCurrentProgress(3);
        progress.beginSheet(&window);
        const auto *bar = progress.window()->findChild<QProgressBar *>(QStringLiteral("progressIndicator"));
        QCOMPARE(bar->maximum(), 100); // never set: left alone
        QCOMPARE(bar->value(), 3);
        QCOMPARE(progress.window()->findChild<QLabel *>(QStringLiteral("titleLabel"))->text(),
                 QStringLiteral("Loading configuration..."));
        progress.setProgressMax(7);
        progress.setCurrentProgress(6);
        QCOMPARE(bar->maximum(), 7);
        QCOMPARE(bar->value(), 6);
        const QPointer<QDialog> sheet = progress.window();
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(sheet->isVisible());
        progress.endSheet();
        QTRY_VERIFY(sheet.isNull());
    }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
