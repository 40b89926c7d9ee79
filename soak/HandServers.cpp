#include "Hand.h"

#include "Controls.h"
#include "GameServers.h"
#include "Hands.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>

bool Hand::switchTab()
{
    const auto &tabs = *control<QTabWidget>(window(), "tabControlMain");
    return tabs.isVisible() && goTo(tabs.widget(below(tabs.count())));
}

bool Hand::resizeWindow()
{
    window().resize(1024 + below(600), 640 + below(400));
    return true;
}

bool Hand::disconnect()
{
    return press(page("serversView"), "disconnectButton");
}

void Hand::fillAddress(int server)
{
    const QWidget &pane = page("serversView");
    Hands::type(pane, "hostField", QStringLiteral("127.0.0.1"));
    Hands::type(pane, "portField", QString::number(m_servers.port(server)));
    Hands::type(pane, "passwordField", GameServers::password());
}

bool Hand::connectTo(int server)
{
    fillAddress(server);
    return press(page("serversView"), "connectButton");
}

bool Hand::connectSomewhere()
{
    return connectTo(below(GameServers::count));
}

bool Hand::saveServer()
{
    const int server = below(GameServers::count);
    Hands::type(page("serversView"), "labelField", QStringLiteral("Server %1").arg(server));
    fillAddress(server);
    return press(page("serversView"), "saveToServerListButton");
}

bool Hand::connectToSaved()
{
    return clickRow(table("serversView", "savedServerTableView")) &&
           press(page("serversView"), "connectToSavedServerButton");
}

bool Hand::useConsole()
{
    static const QStringList lines{
        QStringLiteral("status"),  QStringLiteral("cmdlist"),       QStringLiteral("g_gravity"),
        QStringLiteral("nothing"), QStringLiteral("fast_restart"),  QStringLiteral("dvardump"),
        QStringLiteral(" "),       QStringLiteral("say from afar"), QStringLiteral("tell 0 hi")};
    auto *command = control<QLineEdit>(page("consoleView"), "consoleInput");
    if (!goTo("consoleView") || !command->isEnabled())
        return false;
    Hands::type(command, lines.at(below(static_cast<int>(lines.size()))));
    QTest::keyClick(command, Qt::Key_Return);
    return true;
}

bool Hand::walkHistory()
{
    if (!goTo("consoleView"))
        return false;
    auto *command = control<QLineEdit>(page("consoleView"), "consoleInput");
    for (int i = below(6); i >= 0; --i)
        QTest::keyClick(command, isChance(3) ? Qt::Key_Down : Qt::Key_Up);
    QScrollBar *bar = control<QPlainTextEdit>(page("consoleView"), "consoleOutput")->verticalScrollBar();
    bar->setValue(isChance(2) ? bar->maximum() : below(bar->maximum() + 1));
    return true;
}
