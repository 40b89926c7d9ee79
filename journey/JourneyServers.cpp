#include "Journey.h"

#include "AppDelegate.h"
#include "FormMainView.h"
#include "Hands.h"
#include "PlaceholderTable.h"
#include "PlayersView.h"
#include "ServersView.h"
#include "StatusLine.h"

static QString labelOfServer()
{
    return QStringLiteral("Harbour Lights");
}

static void fillForm(const ServersView &pane, const QString &label, const DemoServer &server)
{
    Hands::type(pane.labelField, label);
    Hands::type(pane.hostField, QStringLiteral("127.0.0.1"));
    Hands::type(pane.portField, QString::number(server.port()));
    Hands::type(pane.passwordField, server.password());
}

bool Journey::saveAServer()
{
    const ServersView &pane = *window().serversView;
    fillForm(pane, labelOfServer(), m_server);
    Hands::click(pane.saveToServerListButton);
    if (!expect(Hands::find(*pane.savedServerTableView, labelOfServer()).isValid(),
                QStringLiteral("the server is in the list")))
        return false;
    takePicture(QStringLiteral("saved"));
    return true;
}

bool Journey::connectFromTheList()
{
    const ServersView &pane = *window().serversView;
    Hands::doubleClick(*pane.savedServerTableView, Hands::find(*pane.savedServerTableView, labelOfServer()));
    const bool isListed = waitUntil([this] {
        return window().playersView != nullptr && !window().playersView->playersController->content().isEmpty();
    });
    if (!expect(isListed, QStringLiteral("the players of the server are listed")))
        return false;
    if (!expect(window().statusLine->status() == QLatin1String("Connected to Harbour Lights (Unranked)"),
                QStringLiteral("the status line tells of the connection")))
        return false;
    if (!expect(waitUntilIdle(), QStringLiteral("connecting comes to its end")))
        return false;
    takePicture(QStringLiteral("players"));
    return true;
}

bool Journey::connectByTheForm()
{
    const ServersView &pane = *window().serversView;
    fillForm(pane, QString(), m_playlistServer);
    Hands::click(pane.connectButton);
    const QString status = QStringLiteral("Connected to QuickConnect (Unranked)");
    const bool isConnected =
        waitUntil([&] { return window().statusLine->status() == status && m_application.actions().isIdle(); });
    if (!expect(isConnected, QStringLiteral("the form connects")))
        return false;
    return expect(m_alerts.contains(QStringLiteral("Unsaved Changes to Map Rotation")),
                  QStringLiteral("the unsaved rotation is asked about before another server is connected to"));
}

bool Journey::disconnect()
{
    Hands::click(window().serversView->disconnectButton);
    return expect(window().statusLine->status() == QLatin1String("Not connected"),
                  QStringLiteral("the connection is ended"));
}
