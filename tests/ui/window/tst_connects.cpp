#include "Controls.h"
#include "HostLookup.h"
#include "ServersView.h"
#include "WindowFixture.h"

#include <QAccessible>
#include <QAction>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QTreeView>

#include <memory>
#include <semaphore>

/// Connects as somebody does who sits before it.
struct Window : WindowFixture {
    Window()
    {
        exchange.answerEverything(ScriptedExchange::ok());
        control<QCheckBox>(view, "autoupdateMaps")->setChecked(true);
    }

    void pressConnect(const QString &host, const QString &port, const QString &password)
    {
        control<QLineEdit>(view, "hostField")->setText(host);
        control<QLineEdit>(view, "portField")->setText(port);
        control<QLineEdit>(view, "passwordField")->setText(password);
        control<QPushButton>(view, "connectButton")->click();
    }
    void pressDisconnect() { control<QPushButton>(view, "disconnectButton")->click(); }

    /// A saved server, as the list shows it.
    void save(const SavedServer &entry)
    {
        QVERIFY(savedServers.save(entry).error.isEmpty());
        control<ServersView>(view, "serversView")->loadSavedServersList();
    }
    QInputDialog *prompt() const { return view.findChild<QInputDialog *>("passwordPanel"); }

    QString status() const { return control<QLabel>(view, "toolStripStatusLabelMain")->text(); }
    QString text(const char *field) const { return control<QLineEdit>(view, field)->text(); }
    /// The last field that had the focus in the window, which need not be active.
    QString focused() const { return view.focusWidget() == nullptr ? QString() : view.focusWidget()->objectName(); }
};

/// Connected to a server that runs a playlist and knows a setting; a message plays, and the map is refreshed by itself.
struct BusyWindow : Window {
    BusyWindow()
    {
        exchange.answer("g_gametype", ScriptedExchange::ok("\"g_gametype\" is: \"carry\" default: \"alone\""));
        exchange.answer("mapname", ScriptedExchange::ok("\"mapname\" is: \"ward_brickfield\" default: \"\""));
        awaited(messageRotations.addMessageToCurrentRotation("Hello", "60"));
        if (!awaited(messageRotations.saveUIChanges("n")))
            qFatal("the messages could not be saved");
        awaited(gametypes.loadGametypeList());
        pressConnect("192.0.2.1", "50960", "first");
        QVERIFY(settle());
        awaited(settings.loadSettings());
        messageRotations.startRotation();
        QVERIFY(settle());
        exchange.forgetSent();
    }
    bool isRefreshingMaps() const { return control<QTimer>(view, "autoupdateMapsTimer")->isActive(); }
    bool isPlaying() const { return messageRotations.currentPlayState() == KelMessageRotation::Playing; }
    bool isPasswordKnown() const { return server.dvarList().contains("rcon_password"); }
    int shownSettings() const { return control<QTreeView>(view, "unrankedOutlineView")->model()->rowCount(); }
};

class ConnectsTest : public QObject
{
    Q_OBJECT
private slots:
    void aFailedConnectEndsTheFormerConnection_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<Reply>("dump");
        QTest::addColumn<bool>("isCalledOff");
        const Reply good = ScriptedExchange::dump();
        QTest::newRow("no answer") << "50961" << ScriptedExchange::failure() << false;
        QTest::newRow("no port") << "x" << good << false;
        QTest::newRow("a variable is missing") << "50961" << ScriptedExchange::dump("sv_ranked \"0\"\n") << false;
        QTest::newRow("called off") << "50961" << good << true;
    }
    void aFailedConnectEndsTheFormerConnection()
    {
        QFETCH(QString, port);
        QFETCH(Reply, dump);
        QFETCH(bool, isCalledOff);
        BusyWindow window;
        QCOMPARE(window.status(), "Connected to QuickConnect (Unranked)");
        QVERIFY(window.isPlaying() && window.isRefreshingMaps() && window.isPasswordKnown());
        QVERIFY(!window.text("currentMapField").isEmpty() && window.shownSettings() > 0);
        window.exchange.answer("dvardump", dump);
        window.exchange.hold();
        control<QPushButton>(window.view, "restartMapButton")->click(); // has its turn
        window.pressConnect("192.0.2.2", port, "second");
        // What waits behind the connect was meant for the former server: it does not reach it, nor another.
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        emit window.fetcher.progressed(2, 3);
        const auto *progress = control<QLabel>(window.view, "progressLabel");
        QVERIFY(progress->isVisibleTo(&window.view));
        window.exchange.forgetSent();
        window.exchange.release();
        if (isCalledOff) {
            QTRY_COMPARE(window.exchange.keptCount(), 1);
            QVERIFY(!window.server.isConnected() && !window.isPlaying() && !window.isPasswordKnown());
            window.pressDisconnect();
        }
        QVERIFY(window.releaseEverything());
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(!window.server.isConnected() && !progress->isVisibleTo(&window.view));
        QVERIFY(!window.isPlaying() && !window.isRefreshingMaps() && !window.isPasswordKnown());
        QVERIFY(!window.alerts.titles().contains("Remote Command Failure"));
        for (const Request &request : window.exchange.requests())
            QVERIFY2(request.host == "192.0.2.2" && request.password == "second", qPrintable(request.command));
        QVERIFY(control<QTabWidget>(window.view, "tabControlMain")->isVisibleTo(&window.view));
        QCOMPARE(window.text("currentMapField"), QString());
        QCOMPARE(window.text("currentGameTypeField"), QString());
        QCOMPARE(window.shownSettings(), 0);
        QVERIFY(!control<QPushButton>(window.view, "saveConfigButton")->isEnabled());
        QVERIFY(!control<QPushButton>(window.view, "disconnectButton")->isEnabled());
    }

    void disconnectingWhileTheNameIsLookedUp()
    {
        const auto answered = std::make_shared<std::binary_semaphore>(0);
        SystemHostLookup lookup([answered](const QByteArray &) {
            answered->acquire();
            return HostAddresses{{"203.0.113.5"}, {}, false};
        });
        Window window;
        window.server.setHostLookup(&lookup);
        window.pressConnect("play.example.org", "50961", "x");
        QTRY_COMPARE(window.status(), "Looking up play.example.org…");
        window.pressDisconnect();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), "Not connected");
        answered->release(); // it answers in the end, to nobody
    }

    void theServerKeepsItsNameAfterCancelAtTheQuestion()
    {
        Window window;
        window.exchange.answer("dvardump", ScriptedExchange::dump());
        window.save({"Home", "192.0.2.1", "50960", QStringLiteral("first")});
        window.save({"Other", "192.0.2.2", "50961", QStringLiteral("second")});
        window.view.connectByCommandLine("Home", {});
        QVERIFY(window.settle());
        awaited(window.messageRotations.addMessageToCurrentRotation("unsaved", "5"));
        window.alerts.answerWith(2);
        window.exchange.forgetSent();
        window.view.connectByCommandLine("Other", {});
        QCOMPARE(window.sent(), QStringList());
        QCOMPARE(window.status(), "Connected to Home (Unranked)");
        QVERIFY(window.server.isConnected());
        window.exchange.answerEverything(ScriptedExchange::failure("refused", RConResultInvalidPassword));
        control<QPushButton>(window.view, "refreshPlayersButton")->click();
        QVERIFY(window.settle());
        control<QPushButton>(window.view, "linkPasswordButton")->click();
        QInputDialog *prompt = window.prompt();
        QVERIFY(prompt != nullptr);
        QVERIFY2(prompt->labelText().endsWith("192.0.2.1"), qPrintable(prompt->labelText()));
        window.exchange.answerEverything(ScriptedExchange::ok());
        prompt->setTextValue("changed");
        prompt->accept();
        QTRY_VERIFY(window.status().startsWith("Connected again"));
        QVERIFY(window.settle());
        QCOMPARE(window.savedServers.password("Home").value_or(QString()), "changed");
        QCOMPARE(window.savedServers.password("Other").value_or(QString()), "second");
    }

    void aSecondConnectIsNotAcceptedWhileOneRuns()
    {
        Window window;
        window.exchange.hold();
        window.pressConnect("192.0.2.1", "50960", "first");
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        window.view.connectTo(ConnectTarget{"Other", "192.0.2.2", "50961", "second", nullptr});
        QCOMPARE(window.status(), "Connecting to QuickConnect...");
        QVERIFY(window.releaseEverything());
        QCOMPARE(window.exchange.sent().count("dvardump"), 1);
        QCOMPARE(window.server.host(), "192.0.2.1");
    }

    void disconnectCanBePressedWhileThereIsSomethingToEnd()
    {
        Window window;
        QMenu *menu = nullptr;
        QAction *entry = nullptr;
        for (QMenu *each : window.view.menuBar()->findChildren<QMenu *>()) {
            for (QAction *action : each->actions()) {
                if (action->shortcut() == QKeySequence("Ctrl+D")) {
                    menu = each;
                    entry = action;
                }
            }
        }
        QVERIFY(entry != nullptr);
        const auto isOn = [&] {
            emit menu->aboutToShow();
            const bool isEntryOn = entry->isEnabled();
            emit menu->aboutToHide();
            return isEntryOn && control<QPushButton>(window.view, "disconnectButton")->isEnabled();
        };
        const auto isOff = [&] {
            emit menu->aboutToShow();
            const bool isEntryOn = entry->isEnabled();
            emit menu->aboutToHide();
            return !isEntryOn && !control<QPushButton>(window.view, "disconnectButton")->isEnabled();
        };
        QVERIFY(isOff());
        window.exchange.hold();
        window.pressConnect("192.0.2.1", "50960", "pw");
        QVERIFY(isOn());
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        entry->trigger();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(isOff());
        awaited(window.messageRotations.addMessageToCurrentRotation("Hello", "60"));
        window.messageRotations.startRotation();
        entry->trigger(); // ends nothing: there is nothing to end
        QCOMPARE(window.messageRotations.currentPlayState(), KelMessageRotation::Playing);
        window.messageRotations.stopRotation();
        QVERIFY(window.settle());
    }

    void theAskedPasswordIsStoredOnceItHasProvedRight_data()
    {
        QTest::addColumn<bool>("isSaved");
        QTest::addColumn<bool>("isRight");
        QTest::newRow("saved server, right") << true << true;
        QTest::newRow("saved server, refused") << true << false;
        QTest::newRow("command line, right") << false << true;
        QTest::newRow("command line, refused") << false << false;
    }
    void theAskedPasswordIsStoredOnceItHasProvedRight()
    {
        QFETCH(bool, isSaved);
        QFETCH(bool, isRight);
        Window window;
        if (isSaved)
            window.save({"Home", "192.0.2.9", "50960", std::nullopt});
        if (!isRight)
            window.exchange.answer("dvardump", ScriptedExchange::failure("refused", RConResultInvalidPassword));
        window.view.connectByCommandLine(isSaved ? "Home" : "192.0.2.9:50960", {});
        QVERIFY(window.prompt() != nullptr);
        window.prompt()->setTextValue("typed");
        const QPointer<QInputDialog> prompt = window.prompt();
        prompt->accept();
        QVERIFY(window.settle());
        QCOMPARE(window.exchange.requests().first().password, "typed");
        const QString stored =
            isSaved ? window.savedServers.password("Home").value_or(QString()) : window.text("passwordField");
        QCOMPARE(stored, isRight ? "typed" : "");
    }

    void anEmptyPasswordIsNotTaken()
    {
        Window window;
        window.view.connectByCommandLine("192.0.2.9:50960", {});
        QInputDialog *prompt = window.prompt();
        QVERIFY(prompt != nullptr);
        QCOMPARE(prompt->textEchoMode(), QLineEdit::Password);
        const QPushButton *button = prompt->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok);
        QVERIFY(!button->isEnabled());
        prompt->setTextValue("x");
        QVERIFY(button->isEnabled());
        prompt->setTextValue("");
        QVERIFY(!button->isEnabled());
        prompt->accept();
        QCOMPARE(window.sent(), QStringList());
    }

    void theCommandLineFindsTheServer_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("sentTo"); // host:port and password; empty: nothing is sent
        QTest::newRow("label") << "Home"
                               << ""
                               << "192.0.2.9:50960 saved";
        QTest::newRow("label without regard to case") << "hOME"
                                                      << ""
                                                      << "192.0.2.9:50960 saved";
        QTest::newRow("the exact label first") << "home"
                                               << ""
                                               << "192.0.2.8:50962 other";
        QTest::newRow("address of a saved server") << " 192.0.2.9:50960"
                                                   << ""
                                                   << "192.0.2.9:50960 saved";
        QTest::newRow("the given password wins") << "Home"
                                                 << "given"
                                                 << "192.0.2.9:50960 given";
        QTest::newRow("the given password wins at an address") << "192.0.2.9:50960"
                                                               << "given"
                                                               << "192.0.2.9:50960 given";
        QTest::newRow("another address") << "192.0.2.7:50960"
                                         << "given"
                                         << "192.0.2.7:50960 given";
        QTest::newRow("no such label") << "Elsewhere"
                                       << "given"
                                       << "";
    }
    void theCommandLineFindsTheServer()
    {
        QFETCH(QString, target);
        QFETCH(QString, given);
        QFETCH(QString, sentTo);
        Window window;
        if (target != "hOME")
            window.save({"home", "192.0.2.8", "50962", QStringLiteral("other")});
        window.save({"Home", " 192.0.2.9 ", "50960 ", QStringLiteral("saved")});
        window.view.connectByCommandLine(target, given);
        QVERIFY(window.settle());
        QVERIFY(window.prompt() == nullptr);
        if (sentTo.isEmpty()) {
            QCOMPARE(window.alerts.titles(), QStringList{"Server Not Found"});
            QCOMPARE(window.exchange.sent(), QStringList());
            return;
        }
        const Request first = window.exchange.requests().first();
        QCOMPARE(QStringLiteral("%1:%2 %3").arg(first.host).arg(first.port).arg(first.password), sentTo);
        QCOMPARE(window.savedServers.password("Home").value_or(QString()), "saved");
    }

    void aRefusedPasswordIsSelected_data()
    {
        QTest::addColumn<bool>("isSaved");
        QTest::addColumn<RConResult>("result");
        QTest::addColumn<QString>("field");
        QTest::newRow("form") << false << RConResultInvalidPassword << "passwordField";
        QTest::newRow("saved server") << true << RConResultInvalidPassword << "savedPasswordField";
        QTest::newRow("no answer") << false << RConResultTimeout << "labelField";
    }
    void aRefusedPasswordIsSelected()
    {
        QFETCH(bool, isSaved);
        QFETCH(RConResult, result);
        QFETCH(QString, field);
        Window window;
        window.save({"Home", "192.0.2.9", "50960", QStringLiteral("old")});
        window.save({"Other", "192.0.2.8", "50960", QStringLiteral("old")});
        window.exchange.answer("dvardump", ScriptedExchange::failure("refused", result));
        window.alerts.hold();
        control<QLineEdit>(window.view, "labelField")->setFocus();
        if (isSaved)
            window.view.connectByCommandLine("Home", {});
        else
            window.pressConnect("192.0.2.1", "50960", "wrong");
        QTRY_COMPARE(window.alerts.openCount(), 1);
        QCOMPARE(window.focused(), "labelField"); // the alert has the word
        window.alerts.dismiss();
        QVERIFY(window.settle());
        QCOMPARE(window.focused(), field);
        if (field != "labelField")
            QCOMPARE(control<QLineEdit>(window.view, qPrintable(field))->selectedText(), isSaved ? "old" : "wrong");
    }

    void tellsWhatBecameOfAnAction()
    {
        BusyWindow window;
        window.view.resize(1024, 640);
        window.view.show();
        auto *outcome = control<QLabel>(window.view, "outcomeLabel");
        QVERIFY(!outcome->isVisible());
        const QString said = "Captain Nobody 2 was kicked, " + QString("and told so ").repeated(14).trimmed();
        window.exchange.answer("fast_restart", ScriptedExchange::ok(said + '\n'));
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        QVERIFY(window.settle());
        QVERIFY(outcome->isVisible());
        const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(outcome);
        QCOMPARE(spoken->text(QAccessible::Name), said);
        const auto *status = control<QLabel>(window.view, "toolStripStatusLabelMain");
        QCOMPARE(status->text(), "Connected to QuickConnect (Unranked)");
        QVERIFY(status->width() >= status->sizeHint().width() && outcome->width() > 200);
        QCOMPARE(window.view.width(), 1024);
        QVERIFY(control<QWidget>(window.view, "linkStatus")->geometry().right() < 1024);
        window.pressDisconnect();
        QVERIFY(!outcome->isVisible() && outcome->text().isEmpty());
        QVERIFY(awaited(window.messageRotations.saveUIChanges("evening")));
        QCOMPARE(outcome->text(), "Saved rotation \"evening\"");
    }

    void isBusyWhileAnExchangeRunsAndNotWhileItAsks()
    {
        BusyWindow window;
        window.view.show();
        auto *indicator = control<QProgressBar>(window.view, "busyIndicator");
        window.exchange.hold();
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        QTRY_VERIFY(indicator->isVisible());
        window.alerts.hold();
        window.exchange.answer("fast_restart", ScriptedExchange::failure());
        window.exchange.release();
        QTRY_COMPARE(window.alerts.openCount(), 1);
        QTRY_VERIFY(!indicator->isVisible());
        QVERIFY(!window.actions.isIdle());
        window.alerts.dismiss();
        QVERIFY(window.settle());
    }
};

QTEST_MAIN(ConnectsTest)
#include "tst_connects.moc"
