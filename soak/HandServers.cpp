#include "Hand.h"

#include "ConsoleView.h"
#include "FormMainView.h"
#include "GameServers.h"
#include "Hands.h"
#include "HistoryStepper.h"
#include "PlaceholderTable.h"
#include "ServersView.h"
#include "TranscriptView.h"

#include <QScrollBar>
#include <QTest>

bool Hand::switchTab()
{
    QTabWidget &tabs = *window().tabControlMain;
    return tabs.isVisible() && goTo(tabs.widget(below(tabs.count())));
}

bool Hand::resizeWindow()
{
    window().resize(1024 + below(600), 640 + below(400));
    return true;
}

bool Hand::disconnect()
{
    return press(window().serversView->disconnectButton);
}

bool Hand::connectTo(int server)
{
    const ServersView &pane = *window().serversView;
    Hands::type(pane.hostField, QStringLiteral("127.0.0.1"));
    Hands::type(pane.portField, QString::number(m_servers.port(server)));
    Hands::type(pane.passwordField, GameServers::password());
    return press(pane.connectButton);
}

bool Hand::connectSomewhere()
{
    return connectTo(below(GameServers::count));
}

bool Hand::saveServer()
{
    const ServersView &pane = *window().serversView;
    const int server = below(GameServers::count);
    Hands::type(pane.labelField, QStringLiteral("Server %1").arg(server));
    Hands::type(pane.hostField, QStringLiteral("127.0.0.1"));
    Hands::type(pane.portField, QString::number(m_servers.port(server)));
    Hands::type(pane.passwordField, GameServers::password());
    return press(pane.saveToServerListButton);
}

bool Hand::connectToSaved()
{
    const ServersView &pane = *window().serversView;
    return clickRow(*pane.savedServerTableView) && press(pane.connectToSavedServerButton);
}

bool Hand::useConsole()
{
    static const QStringList lines{
        QStringLiteral("status"),  QStringLiteral("cmdlist"),       QStringLiteral("g_gravity"),
        QStringLiteral("nothing"), QStringLiteral("fast_restart"),  QStringLiteral("dvardump"),
        QStringLiteral(" "),       QStringLiteral("say from afar"), QStringLiteral("tell 0 hi")};
    const ConsoleView &view = *window().consoleView;
    if (!goTo(window().consoleView) || !view.consoleInput->isEnabled())
        return false;
    Hands::type(view.consoleInput, lines.at(below(static_cast<int>(lines.size()))));
    QTest::keyClick(view.consoleInput, Qt::Key_Return);
    return true;
}

bool Hand::walkHistory()
{
    const ConsoleView &view = *window().consoleView;
    if (!goTo(window().consoleView))
        return false;
    for (int i = below(6); i >= 0; --i)
        QTest::keyClick(view.consoleInput, isChance(3) ? Qt::Key_Down : Qt::Key_Up);
    QScrollBar *bar = view.consoleOutput->verticalScrollBar();
    bar->setValue(isChance(2) ? bar->maximum() : below(bar->maximum() + 1));
    return true;
}
