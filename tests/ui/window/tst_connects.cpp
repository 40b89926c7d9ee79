#include "Controls.h"
#include "ServersView.h"
#include "WindowFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>

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
        QCOMPARE(window.text("currentMapField"), QString());
        QCOMPARE(window.shownSettings(), 0);
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

    void disconnectCanBePressedWhileThereIsSomethingToEnd()
    {
        Window window;
        const auto *button = control<QPushButton>(window.view, "disconnectButton");
        QVERIFY(!button->isEnabled());
        window.exchange.hold();
        window.pressConnect("192.0.2.1", "50960", "pw");
        QTRY_COMPARE(window.exchange.keptCount(), 1);
        QVERIFY(button->isEnabled());
        window.pressDisconnect();
        QVERIFY(window.settle());
        QCOMPARE(window.status(), "Not connected");
        QVERIFY(!button->isEnabled());
    }

    void theAskedPasswordIsStoredOnceItHasProvedRight_data()
    {
        QTest::addColumn<bool>("isRight");
        QTest::newRow("right") << true;
        QTest::newRow("refused") << false;
    }
    void theAskedPasswordIsStoredOnceItHasProvedRight()
    {
        QFETCH(bool, isRight);
        Window window;
        window.save({"Home", "192.0.2.9", "50960", std::nullopt});
        if (!isRight)
            window.exchange.answer("dvardump", ScriptedExchange::failure("refused", RConResultInvalidPassword));
        window.view.connectByCommandLine("Home", {});
        QPointer<QInputDialog> prompt = window.prompt();
        QVERIFY(prompt != nullptr);
        QCOMPARE(prompt->textEchoMode(), QLineEdit::Password);
        prompt->setTextValue("");
        prompt->accept(); // nothing without a password
        QCOMPARE(window.sent(), QStringList());
        window.view.connectByCommandLine("Home", {});
        prompt = window.prompt();
        prompt->setTextValue("typed");
        prompt->accept();
        QVERIFY(window.settle());
        QCOMPARE(window.exchange.requests().first().password, "typed");
        QCOMPARE(window.savedServers.password("Home").value_or(QString()), isRight ? "typed" : "");
    }

    void theCommandLineFindsTheServer_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("sentTo"); // host:port and password; empty: nothing is sent
        const auto row = [](const char *name, const char *target, const char *given, const char *sentTo) {
            QTest::newRow(name) << QString(target) << QString(given) << QString(sentTo);
        };
        row("label", "Home", "", "192.0.2.9:50960 saved");
        row("the given password wins", "Home", "given", "192.0.2.9:50960 given");
        row("another address", "192.0.2.7:50960", "given", "192.0.2.7:50960 given");
        row("no such label", "Elsewhere", "given", "");
    }
    void theCommandLineFindsTheServer()
    {
        QFETCH(QString, target);
        QFETCH(QString, given);
        QFETCH(QString, sentTo);
        Window window;
        window.save({"Home", " 192.0.2.9 ", "50960 ", QStringLiteral("saved")});
        window.view.connectByCommandLine(target, given);
        QVERIFY(window.settle());
        QVERIFY(window.prompt() == nullptr);
        QCOMPARE(window.alerts.titles().contains("Server Not Found"), sentTo.isEmpty());
        const Request first = window.exchange.requests().value(0);
        if (!sentTo.isEmpty())
            QCOMPARE(QStringLiteral("%1:%2 %3").arg(first.host).arg(first.port).arg(first.password), sentTo);
        QCOMPARE(window.exchange.sent().isEmpty(), sentTo.isEmpty());
        QCOMPARE(window.savedServers.password("Home").value_or(QString()), "saved");
    }

    void aRefusedPasswordIsSelected()
    {
        Window window;
        window.save({"Home", "192.0.2.9", "50960", QStringLiteral("old")});
        window.save({"Other", "192.0.2.8", "50960", QStringLiteral("old")});
        window.alerts.hold();
        const auto focusedAfterAFailure = [&window] {
            const bool isTold = QTest::qWaitFor([&window] { return window.alerts.openCount() == 1; });
            if (!isTold || window.focused() != "labelField") // the alert has the word
                return QString("none");
            window.alerts.dismiss();
            return window.settle() ? window.focused() : QString();
        };
        const auto focusLabel = [&window] {
            control<QLineEdit>(window.view, "labelField")->setFocus();
        };
        window.exchange.answer("dvardump", ScriptedExchange::failure("refused", RConResultInvalidPassword));
        focusLabel();
        window.view.connectByCommandLine("Home", {});
        QCOMPARE(focusedAfterAFailure(), "savedPasswordField");
        QCOMPARE(control<QLineEdit>(window.view, "savedPasswordField")->selectedText(), "old");
        focusLabel();
        window.pressConnect("192.0.2.1", "50960", "wrong");
        QCOMPARE(focusedAfterAFailure(), "passwordField");
        QCOMPARE(control<QLineEdit>(window.view, "passwordField")->selectedText(), "wrong");
        window.exchange.answer("dvardump", ScriptedExchange::failure()); // which says nothing of the password
        focusLabel();
        window.pressConnect("192.0.2.1", "50960", "right");
        QCOMPARE(focusedAfterAFailure(), "labelField");
    }

    void tellsWhatBecameOfAnAction()
    {
        BusyWindow window;
        window.view.resize(1024, 640);
        window.view.show();
        auto *outcome = control<QLabel>(window.view, "outcomeLabel");
        const QString said = "Captain Nobody 2 was kicked, " + QString("and told so ").repeated(14).trimmed();
        window.exchange.answer("fast_restart", ScriptedExchange::ok(said + '\n'));
        control<QPushButton>(window.view, "fastRestartMapButton")->click();
        QVERIFY(window.settle());
        QVERIFY(outcome->isVisible());
        QCOMPARE(QAccessible::queryAccessibleInterface(outcome)->text(QAccessible::Name), said);
        QCOMPARE(window.view.width(), 1024);
        window.pressDisconnect();
        QVERIFY(!outcome->isVisible() && outcome->text().isEmpty());
    }
};

QTEST_MAIN(ConnectsTest)
#include "tst_connects.moc"
