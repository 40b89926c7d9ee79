#include "Controls.h"
#include "WindowFixture.h"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>

/// A window that is connected, shown and active; one player is selected.
struct ShortcutWindow : WindowFixture {
    ShortcutWindow()
    {
        exchange.answerEverything(ScriptedExchange::ok());
        exchange.answer("teamstatus", ScriptedExchange::ok("1 0 48 g Ann lamps 0 192.0.2.1:50307 77 25000\n"));
        view.show();
        view.connectTo({"Here", "192.0.2.9", "50960", "pw", nullptr});
        QVERIFY(settle());
        QVERIFY(QTest::qWaitForWindowActive(&view));
        control<QTableView>(view, "playersTableView")->selectRow(0);
    }

    /// Brings a page to the front and gives the focus to what is called `name`.
    QWidget *focus(const char *page, const QString &name)
    {
        control<QTabWidget>(view, "tabControlMain")->setCurrentWidget(control<QWidget>(view, page));
        QWidget *widget = name == QLatin1String("menu bar") ? view.menuBar() : control<QWidget>(view, name.toLatin1());
        widget->setFocus();
        const bool isSettled = settle();
        exchange.forgetSent();
        return isSettled && widget->hasFocus() ? widget : nullptr;
    }

    const QAction *entry(const QString &menuTitle, const QString &text) const
    {
        for (const QAction *menu : view.menuBar()->actions()) {
            for (const QAction *action : menu->menu()->actions()) {
                if (menu->text() == menuTitle && action->text() == text)
                    return action;
            }
        }
        return nullptr;
    }
};

class ShortcutsTest : public QObject
{
    Q_OBJECT
private slots:
    void aKeyActsWhereItBelongs_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("focus");
        QTest::addColumn<QKeyCombination>("key");
        QTest::addColumn<QStringList>("sent");
        const auto row = [](const char *name, const char *page, const char *focus, QKeyCombination key,
                            const QStringList &sent = {}) {
            QTest::newRow(name) << QString(page) << QString(focus) << key << sent;
        };
        const QKeyCombination kick = Qt::CTRL | Qt::Key_K;
        row("kick in the table", "playersView", "playersTableView", kick, {"clientkick 1"});
        row("kick in the filter", "playersView", "playerFilterField", kick);
        row("kick in the servers' form", "playersView", "hostField", kick);
        row("kick in the menu bar", "playersView", "menu bar", kick);
        row("kick on Maps", "mapsView", "mapListView", kick);
        row("kick in the console", "consoleView", "consoleInput", kick);
        const QStringList maps{"g_gametype", "mapname"};
        row("refresh with Players in front", "playersView", "hostField", Qt::Key_F5, {"teamstatus"});
        row("refresh with Maps in front", "mapsView", "hostField", Qt::Key_F5, maps);
        row("refresh on the console", "consoleView", "consoleInput", Qt::Key_F5);
        const QKeyCombination connecting = Qt::CTRL | Qt::Key_Return;
        row("connect from the console", "consoleView", "consoleInput", connecting, {"typed"});
        row("connect from the table", "playersView", "playersTableView", connecting);
    }
    void aKeyActsWhereItBelongs()
    {
        QFETCH(QString, page);
        QFETCH(QString, focus);
        QFETCH(QKeyCombination, key);
        ShortcutWindow window;
        control<QLineEdit>(window.view, "hostField")->setText("192.0.2.10");
        control<QLineEdit>(window.view, "portField")->setText("50961");
        control<QLineEdit>(window.view, "passwordField")->setText("pw");
        control<QLineEdit>(window.view, "consoleInput")->setText("typed");
        QWidget *focused = window.focus(page.toLatin1(), focus);
        QVERIFY(focused != nullptr);
        QTest::keyClick(focused, key.key(), key.keyboardModifiers());
        QTEST(window.sent(), "sent");
    }

    void theKeyOfConnectActsInTheServersPane()
    {
        ShortcutWindow window;
        control<QLineEdit>(window.view, "hostField")->setText("192.0.2.10");
        control<QLineEdit>(window.view, "portField")->setText("50961");
        control<QLineEdit>(window.view, "passwordField")->setText("pw");
        QWidget *focused = window.focus("playersView", "hostField");
        QVERIFY(focused != nullptr);
        QTest::keyClick(focused, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(window.sent().value(0), "dvardump");
        QCOMPARE(window.exchange.requests().first().host, "192.0.2.10");
    }

    void aKeyThatIsHeldDownActsOnce()
    {
        ShortcutWindow window;
        QWidget *table = window.focus("playersView", "playersTableView");
        for (const bool isRepeated : {false, true, true})
            QTest::simulateEvent(table, true, Qt::Key_K, Qt::ControlModifier, QString(), isRepeated);
        QCOMPARE(window.sent(), QStringList{"clientkick 1"});
        window.exchange.forgetSent();
        // What X11 makes of a key that is held down, where Qt does not see that it is.
        constexpr ulong time = 50307;
        QKeyEvent released(QEvent::KeyRelease, Qt::Key_K, Qt::ControlModifier);
        released.setTimestamp(time);
        QCoreApplication::sendEvent(table, &released);
        QVERIFY(qt_sendShortcutOverrideEvent(table, time, Qt::Key_K, Qt::ControlModifier));
        QCOMPARE(window.sent(), QStringList());
        QVERIFY(qt_sendShortcutOverrideEvent(table, time + 90, Qt::Key_K, Qt::ControlModifier));
        QCOMPARE(window.sent(), QStringList({"teamstatus", "clientkick 1"})); // pressed again
    }

    void noActionButUndoAndRedoRepeats()
    {
        const ShortcutWindow window;
        QStringList repeated;
        for (const QAction *action : window.view.findChildren<QAction *>()) {
            if (!action->shortcut().isEmpty() && action->autoRepeat() && !action->parent()->inherits("QLineEdit"))
                repeated.append(action->text());
        }
        repeated.removeAll("&Undo");
        repeated.removeAll("&Redo");
        QCOMPARE(repeated, QStringList());
    }

    void whatCannotBeDoneNowIsGreyAndItsKeyComesBack()
    {
        ShortcutWindow window;
        control<QPushButton>(window.view, "disconnectButton")->click();
        QVERIFY(!window.entry("&Server", "&Connect")->isEnabled()); // the form is empty
        QVERIFY(!window.entry("&Server", "&Disconnect")->isEnabled());
        const QAction *open = window.entry("&File", "&Open Rotation…");
        for (const char *page : {"playersView", "mapsView", "consoleView", "messagesView"}) {
            control<QTabWidget>(window.view, "tabControlMain")->setCurrentWidget(control<QWidget>(window.view, page));
            QCOMPARE(open->isEnabled(), QString("mapsView messagesView").contains(page));
        }
        window.connectToServer();
        QTest::keyClick(window.focus("playersView", "playersTableView"), Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!window.server.isConnected());
    }

    void theKeyOfDisconnectDeletesInATextField()
    {
        const QKeySequence key(Qt::CTRL | Qt::Key_D);
        const bool isDeleting = QKeySequence::keyBindings(QKeySequence::Delete).contains(key); // so on X11
        ShortcutWindow window;
        auto *field = control<QLineEdit>(window.view, "consoleInput");
        field->setText("typed");
        QVERIFY(window.focus("consoleView", "consoleInput") != nullptr);
        field->setCursorPosition(0);
        QTest::keyClick(field, Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(field->text(), isDeleting ? "yped" : "typed");
        QVERIFY(window.server.isConnected());
        QTest::keyClick(window.focus("playersView", "playersTableView"), Qt::Key_D, Qt::ControlModifier);
        QVERIFY(!window.server.isConnected());
    }
};

QTEST_MAIN(ShortcutsTest)
#include "tst_shortcuts.moc"
