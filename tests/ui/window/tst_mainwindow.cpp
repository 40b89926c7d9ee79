#include "Controls.h"
#include "ServersView.h"
#include "WindowFixture.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>

struct Window : WindowFixture {
    Window() { exchange.answer("teamstatus", ScriptedExchange::ok()); }

    void connectByForm()
    {
        control<QLineEdit>(view, "hostField")->setText("192.0.2.1");
        control<QLineEdit>(view, "portField")->setText("50960");
        control<QLineEdit>(view, "passwordField")->setText("pw");
        control<QPushButton>(view, "connectButton")->click();
    }
    QTabWidget *tabs() const { return control<QTabWidget>(view, "tabControlMain"); }
    void bringToFront(const char *page) const { tabs()->setCurrentWidget(control<QWidget>(view, page)); }
    QString status() const { return control<QLabel>(view, "toolStripStatusLabelMain")->text(); }
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
    void tellsHowConnectingGoes()
    {
        Window window;
        window.exchange.answerEverything(ScriptedExchange::ok()); // a server that fails is asked nothing more
        window.exchange.hold();
        window.connectByForm();
        QCOMPARE(window.status(), "Connecting to QuickConnect...");
        control<QLineEdit>(window.view, "portField")->setText("50961"); // does not allow a second connect
        QVERIFY(!control<QPushButton>(window.view, "connectButton")->isEnabled());
        QVERIFY(window.answerInOrder({"dvardump", "teamstatus", "g_gametype", "mapname", "sv_mapRotation"}));
        QCOMPARE(window.status(), "Connected to QuickConnect (Unranked)");
        QVERIFY(control<QPushButton>(window.view, "connectButton")->isEnabled());
        control<QPushButton>(window.view, "disconnectButton")->click();
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(!window.server.isConnected());
    }

    void aFailedConnectKeepsTheForm()
    {
        Window window;
        window.exchange.forget("dvardump");
        window.connectByForm();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), "Not connected");
        QCOMPARE(window.alerts.titles(), QStringList{"Command Send Error"});
        QCOMPARE(control<QLineEdit>(window.view, "hostField")->text(), "192.0.2.1");
        QCOMPARE(control<QLineEdit>(window.view, "passwordField")->text(), "pw");
    }

    void whatCanBePressedHasANameForAScreenReader()
    {
        const Window window;
        QStringList nameless;
        for (QAbstractButton *button : window.view.findChildren<QAbstractButton *>()) {
            const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(button);
            const bool isQtsOwn = button->inherits("QTableCornerButton") || button->parent()->inherits("QTabBar") ||
                                  button->parent()->inherits("QMenuBar");
            if (!isQtsOwn && (spoken == nullptr || spoken->text(QAccessible::Name).isEmpty()))
                nameless.append(button->parent()->objectName() + u'/' + button->metaObject()->className());
        }
        QCOMPARE(nameless.join(u' '), QString());
    }

    void theTabsFollowTheModeAndTheConsoleStaysInFront()
    {
        ConnectedWindow window;
        QTabWidget *tabs = window.tabs();
        const auto labels = [&] {
            QStringList list;
            for (int i = 0; i < tabs->count(); ++i)
                list.append(tabs->tabText(i));
            return list.join(QLatin1Char(','));
        };
        QCOMPARE(labels(), "Players,Maps,Settings,Messages,Config Builder,Console");
        QCOMPARE(tabs->currentIndex(), 0);
        window.bringToFront("consoleView");
        QTest::keyClicks(control<QLineEdit>(window.view, "consoleInput"), "playlist_enabled 1");
        QTest::keyClick(control<QLineEdit>(window.view, "consoleInput"), Qt::Key_Return);
        QVERIFY(window.settle());
        QCOMPARE(labels(), "Players,Playlists,Settings,Messages,Config Builder,Console");
        QCOMPARE(tabs->currentWidget()->objectName(), "consoleView");
        window.exchange.forgetSent();
        control<QPushButton>(window.view, "refreshPlayersButton")->click();
        QCOMPARE(window.sent(), QStringList()); // the players' tab is not in front
    }

    void newTabsTakeTheFocusFromNobodyElse_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("afterwards");
        QTest::newRow("the form keeps it") << "mapsView"
                                           << "labelField"
                                           << "labelField";
        QTest::newRow("a tab that goes hands it on") << "mapsView"
                                                     << "mapListView"
                                                     << "playersTableView";
    }
    void newTabsTakeTheFocusFromNobodyElse()
    {
        QFETCH(QString, page);
        QFETCH(QString, before);
        ConnectedWindow window;
        window.bringToFront(page.toLatin1());
        control<QWidget>(window.view, before.toLatin1())->setFocus();
        window.exchange.answer("dvardump", ScriptedExchange::dump("sv_ranked \"2\"\nplaylist_enabled \"0\"\n"));
        window.connectByForm();
        QVERIFY(window.settle());
        QCOMPARE(window.tabs()->tabText(1), QString("Playlists"));
        QTEST(window.view.focusWidget()->objectName(), "afterwards");
    }

    void whatIsBeingTypedIsAskedAbout_data()
    {
        QTest::addColumn<bool>("isClosing");
        QTest::newRow("on closing") << true;
        QTest::newRow("on connecting") << false;
    }
    void whatIsBeingTypedIsAskedAbout()
    {
        QFETCH(bool, isClosing);
        Window window;
        const QString text(40000, QLatin1Char('a')); // more than a field takes by itself
        awaited(window.messageRotations.addMessageToCurrentRotation(text, QStringLiteral("3")));
        QVERIFY(awaited(window.messageRotations.saveUIChanges(QStringLiteral("n"))));
        window.view.show();
        window.connectByForm();
        QVERIFY(window.settle());
        window.bringToFront("messagesView");
        QVERIFY(QTest::qWaitForWindowActive(&window.view));
        auto *table = control<QTableView>(window.view, "messageRotationTableView");
        table->setFocus();
        table->selectRow(0);
        QTest::keyClick(table, Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_End);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("b"));
        window.alerts.answerWith(2);
        if (isClosing)
            window.view.close();
        else
            window.connectByForm();
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
        control<QPushButton>(window.view, "refreshPlayersButton")->click();
        window.view.close();
        QVERIFY(window.view.isVisible()); // not before the action has let go
        control<QPushButton>(window.view, "refreshPlayersButton")
            ->click(); // what comes due meanwhile does not hold it up
        QTRY_VERIFY(!window.view.isVisible());
        QVERIFY(window.actions.isIdle());
        QVERIFY(window.alerts.shown().isEmpty());
        QCOMPARE(window.exchange.sent(), QStringList{"teamstatus"});
    }

    void whatIsUndoneIsOfWhatHasTheFocus()
    {
        ConnectedWindow window;
        QVERIFY(window.savedServers.save({"Home", "192.0.2.9", "50161", QStringLiteral("pw")}).error.isEmpty());
        control<ServersView>(window.view, "serversView")->loadSavedServersList();
        window.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&window.view));
        auto *servers = control<QTableView>(window.view, "savedServerTableView");
        window.bringToFront("messagesView");
        auto *rotation = control<QTableView>(window.view, "messageRotationTableView");
        awaited(window.messageRotations.addMessageToCurrentRotation("Hello", "3"));
        QCoreApplication::processEvents(); // a step is made when the turn ends
        const QAction &undo = *window.view.menuBar()->actions().at(1)->menu()->actions().first();
        window.tabs()->tabBar()->setFocus(); // where it stays when another tab comes to the front
        window.bringToFront("playersView");
        QVERIFY(!undo.isEnabled());
        window.bringToFront("messagesView");
        QVERIFY(undo.isEnabled());
        servers->setFocus();
        servers->selectRow(0);
        QTest::keyClick(servers, Qt::Key_Delete);
        const auto counts = [&] {
            return QList<int>{servers->model()->rowCount(), rotation->model()->rowCount()};
        };
        QCOMPARE(counts(), QList<int>({0, 1}));
        rotation->setFocus();
        QTest::keyClick(rotation, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(counts(), QList<int>({0, 0}));
        auto *host = control<QLineEdit>(window.view, "hostField");
        host->clear();
        host->setFocus();
        QTest::keyClicks(host, "x");
        QTest::keyClick(host, Qt::Key_Z, Qt::ControlModifier); // the field's own
        QCOMPARE(host->text() + QString::number(servers->model()->rowCount()), "0");
        window.view.menuBar()->setFocus(); // as Alt and a letter do
        QCOMPARE(undo.text(), "&Undo Delete Server");
        window.view.menuBar()->actions().at(1)->menu()->actions().first()->trigger();
        QCOMPARE(counts(), QList<int>({1, 0}));
    }

    void aPasswordThatIsChangedOnTheServerIsSaved()
    {
        Window window;
        QVERIFY(window.savedServers.save({"Home", "192.0.2.9", "50961", QStringLiteral("pw")}).error.isEmpty());
        control<ServersView>(window.view, "serversView")->loadSavedServersList();
        control<QTableView>(window.view, "savedServerTableView")->selectRow(0);
        control<QPushButton>(window.view, "connectToSavedServerButton")->click();
        QVERIFY(window.settle());
        const Request first = window.exchange.requests().first();
        QCOMPARE(first.host + first.password, "192.0.2.9pw");
        window.exchange.answerEverything(ScriptedExchange::ok());
        awaited(window.server.setDvar(QStringLiteral("rcon_password"), QStringLiteral("new")));
        QCOMPARE(window.savedServers.password("Home").value_or(QString()), "new");
        QCOMPARE(control<QLineEdit>(window.view, "savedPasswordField")->text(), "new");
    }
};

QTEST_MAIN(MainWindowTest)
#include "tst_mainwindow.moc"
