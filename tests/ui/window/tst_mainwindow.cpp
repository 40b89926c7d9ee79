#include "ConfigBuilderView.h"
#include "ConsoleView.h"
#include "KeyHandlingTableView.h"
#include "MessagesView.h"
#include "PlaceholderTable.h"
#include "PlayersView.h"
#include "ProgressWindowController.h"
#include "RotationPane.h"
#include "SectionTable.h"
#include "ServersView.h"
#include "SheetAlerts.h"
#include "StatusLine.h"
#include "WelcomePage.h"
#include "WindowFixture.h"

#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>

struct Window : WindowFixture {
    Window()
    {
        view.makeViews();
        exchange.answer("teamstatus", ScriptedExchange::ok());
    }

    void fillForm(const QString &host, const QString &port, const QString &password) const
    {
        view.serversView->fillForm(host, port);
        view.serversView->passwordField->setText(password);
    }
    void connectByForm()
    {
        fillForm("10.0.0.1", "28960", "pw");
        view.serversView->connectButton->click();
    }
    QString status() const { return view.statusLine->status(); }
};

struct ConnectedWindow : Window {
    ConnectedWindow()
    {
        connectByForm();
        QVERIFY(settle());
    }
};

class MainWindowTest : public QObject
{
    Q_OBJECT
private slots:
    void connectNeedsHostPortAndPassword()
    {
        const Window window;
        const QPushButton &button = *window.view.serversView->connectButton;
        window.fillForm("h", "1", "p");
        QVERIFY(button.isEnabled());
        for (const QStringList &form : {QStringList{"", "1", "p"}, {"h", "", "p"}, {"h", "1", ""}}) {
            window.fillForm(form.at(0), form.at(1), form.at(2));
            QVERIFY2(!button.isEnabled(), qPrintable(form.join(u'|')));
        }
        window.fillForm(" ", "1", "p"); // a blank counts
        QVERIFY(button.isEnabled());
    }

    void tellsHowConnectingGoes()
    {
        Window window;
        QCOMPARE(window.status(), "Not connected");
        window.exchange.hold();
        window.connectByForm();
        QCOMPARE(window.status(), "Connecting to QuickConnect...");
        QVERIFY(!window.view.serversView->connectButton->isEnabled());
        window.view.serversView->portField->setText("28961");
        QVERIFY(!window.view.serversView->connectButton->isEnabled()); // editing does not allow a second connect
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        window.exchange.release();
        QTRY_COMPARE(window.exchange.keptCount(), 1); // the player list, at once
        QCOMPARE(window.status(), "Connected to QuickConnect (Unranked)");
        for (int i = 0; i < 4; ++i) {
            window.exchange.release();
            QTRY_VERIFY(window.exchange.keptCount() == 1 || window.actions.isIdle());
        }
        QVERIFY(window.settle());
        QVERIFY(window.view.serversView->connectButton->isEnabled());
        QCOMPARE(window.exchange.sent(),
                 QStringList({"dvardump", "teamstatus", "g_gametype", "mapname", "sv_mapRotation"}));
        window.view.serversView->disconnectButton->click();
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(!window.server.isConnected());
    }

    void aFailedConnectKeepsTheForm()
    {
        Window window;
        window.exchange.forget("dvardump");
        for (const char *name : {"FerrowRcon.exe.maprotate", "FerrowRcon.exe.msgrotate"}) {
            QFile damaged(window.folder.filePath(name));
            QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("<") == 1);
        }
        window.connectByForm();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), "Not connected");
        QCOMPARE(window.alerts.titles(), // in the order of the connect
                 QStringList({"Message Rotations Not Loaded", "Map Rotations Not Loaded", "Command Send Error"}));
        QCOMPARE(window.view.serversView->hostField->text(), "10.0.0.1");
        QCOMPARE(window.view.serversView->passwordField->text(), "pw");
        QVERIFY(window.view.welcomePage->isVisibleTo(&window.view));
    }

    void disconnectCallsOffWhatRunsAndWaits()
    {
        Window window;
        window.exchange.hold();
        window.connectByForm();
        window.view.connectTo(ConnectTarget{"Other", "10.0.0.2", "1", "pw", nullptr});
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        window.view.serversView->disconnectButton->click();
        QCOMPARE(window.sent(), QStringList{"dvardump"});
        QVERIFY(window.alerts.shown().isEmpty());
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(window.view.serversView->connectButton->isEnabled());
    }

    void theTabKeyGoesFromTheServersToTheTabsAndOnToThePage()
    {
        ConnectedWindow window;
        window.view.show();
        const FormMainView &view = window.view;
        QStringList panes;
        const QWidget *last = view.serversView->hostwellButton;
        for (const QWidget *at = last->nextInFocusChain(); at != last; at = at->nextInFocusChain()) {
            if ((at->focusPolicy() & Qt::TabFocus) == 0 || !at->isVisible())
                continue;
            const bool isInPage = view.tabControlMain->currentWidget()->isAncestorOf(at);
            const char *pane = view.serversView->isAncestorOf(at) ? "servers" : isInPage ? "page" : "tabs";
            if (panes.isEmpty() || panes.last() != QLatin1String(pane))
                panes.append(pane);
        }
        QCOMPARE(panes, QStringList({"tabs", "page", "servers"}));
    }

    void theTabsFollowTheModeAndTheConsoleStaysInFront()
    {
        ConnectedWindow window;
        QTabWidget *tabs = window.view.tabControlMain;
        const auto labels = [&] {
            QStringList list;
            for (int i = 0; i < tabs->count(); ++i)
                list.append(tabs->tabText(i));
            return list.join(QLatin1Char(','));
        };
        QCOMPARE(labels(), "Players,Maps,Settings,Messages,Config Builder,Console");
        QCOMPARE(tabs->currentIndex(), 0);
        tabs->setCurrentIndex(5);
        QTest::keyClicks(window.view.consoleView->consoleInput, "playlist_enabled 1");
        QTest::keyClick(window.view.consoleView->consoleInput, Qt::Key_Return);
        QVERIFY(window.settle());
        QCOMPARE(labels(), "Players,Playlists,Settings,Messages,Config Builder,Console");
        QCOMPARE(tabs->currentIndex(), 5);
        window.exchange.forgetSent();
        window.view.playersView->refreshPlayersButtonPressed();
        QCOMPARE(window.sent(), QStringList()); // the players' tab is not in front
    }

    void theConfigBuildersSecondVisitIsTold()
    {
        ConnectedWindow window;
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
        ConnectedWindow window;
        window.exchange.answerEverything(ScriptedExchange::ok());
        awaited(window.server.setDvar("rcon_password", "new"));
        QCOMPARE(window.view.serversView->passwordField->text(), "new");
    }

    void asksForThePasswordThatTheCommandLineLacks()
    {
        Window window;
        window.view.show();
        window.view.quickConnect("10.0.0.1", "28960", {});
        auto *dialog = window.view.findChild<QInputDialog *>("passwordPanel");
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->textEchoMode(), QLineEdit::Password);
        dialog->setTextValue("asked");
        dialog->accept();
        QVERIFY(window.settle());
        QCOMPARE(window.exchange.requests().first().password, "asked");
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

    void closingInTheMiddleEndsCleanly()
    {
        ConnectedWindow window;
        window.view.show();
        window.exchange.forgetSent();
        window.exchange.hold();
        window.view.playersView->refreshPlayersButtonPressed();
        window.view.close();
        QVERIFY(window.view.isVisible());                       // not before the action has let go
        window.view.playersView->refreshPlayersButtonPressed(); // what comes due meanwhile does not hold it up
        QTRY_VERIFY(!window.view.isVisible());
        QVERIFY(window.actions.isIdle());
        QVERIFY(window.alerts.shown().isEmpty());
        QCOMPARE(window.exchange.sent(), QStringList{"teamstatus"});
    }

    void whatWasMeantForTheServerBeforeIsNotSent()
    {
        Window window;
        window.exchange.answer("teamstatus", ScriptedExchange::ok("1 0 48 g Ann allies 0 10.0.0.1:3074 77 25000\n"));
        window.connectByForm();
        QVERIFY(window.settle());
        window.exchange.forgetSent();
        window.view.playersView->playersTableView->selectRow(0);
        window.exchange.hold();
        window.view.serversView->fillForm("10.0.0.2", "28960");
        window.view.serversView->connectButton->click();
        window.view.playersView->kickPlayerButton->click(); // the players of the server before are still shown
        while (!window.actions.isIdle()) {
            if (window.exchange.keptCount() > 0)
                window.exchange.release();
            QTest::qWait(1);
        }
        QVERIFY(!window.exchange.sent().contains("clientkick 1"));
        QCOMPARE(window.server.host(), "10.0.0.2");
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
        QCoro::Task<int> asking = alerts.run("Title", text, {"Yes", "No"});
        auto *box = window.findChild<QMessageBox *>("alert");
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
        progress.setTitle("Loading configuration...");
        progress.setProgressMax(7);
        progress.setCurrentProgress(3);
        progress.beginSheet(&window);
        const auto *bar = progress.window()->findChild<QProgressBar *>("progressIndicator");
        QCOMPARE(progress.window()->findChild<QLabel *>("titleLabel")->text(), "Loading configuration...");
        QCOMPARE(bar->maximum(), 7);
        QCOMPARE(bar->value(), 3);
        progress.setCurrentProgress(6);
        QCOMPARE(bar->value(), 6);
        const QPointer<QDialog> sheet = progress.window();
        QTest::keyClick(sheet, Qt::Key_Escape);
        QVERIFY(sheet->isVisible());
        progress.endSheet();
        QTRY_VERIFY(sheet.isNull());
    }

    void theSecondVisitSelectsAllRows()
    {
        Window window;
        awaited(window.settings.loadSettings());
        emit window.view.configBuilderVisitedAgain();
        const SectionTable *table = window.view.configBuilderView->configBuilderGeneralSettingsTable;
        QCOMPARE(table->selectionModel()->selectedRows().size(), window.settings.settingsList().size());
        QVERIFY(!window.settings.settingsList().isEmpty());
    }

    void connectsToTheLastSelectedAndFollowsItsPassword()
    {
        WindowFixture fixture;
        fixture.exchange.answer(QStringLiteral("teamstatus"), ScriptedExchange::ok());
        QVERIFY(fixture.savedServers.save({"Home", "10.0.0.9", "28961", QStringLiteral("pw")}).error.isEmpty());
        fixture.view.makeViews();
        ServersView &view = *fixture.view.serversView;
        QVERIFY(!view.connectToSavedServerButton->isEnabled());
        view.savedServerTableView->selectRow(0);
        view.connectToSavedServerButton->click();
        QVERIFY(fixture.settle());
        const Request first = fixture.exchange.requests().first();
        QCOMPARE(first.host, QStringLiteral("10.0.0.9"));
        QCOMPARE(first.port, 28961);
        QCOMPARE(first.password, QStringLiteral("pw"));
        fixture.exchange.answerEverything(ScriptedExchange::ok());
        awaited(fixture.server.setDvar(QStringLiteral("rcon_password"), QStringLiteral("new")));
        QCOMPARE(fixture.savedServers.password("Home").value_or(QString()), QStringLiteral("new"));
        QCOMPARE(view.savedPasswordField->text(), QStringLiteral("new"));
    }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
