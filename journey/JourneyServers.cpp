#include "Journey.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "Hands.h"

static QString labelOfServer()
{
    return QStringLiteral("Harbour Lights");
}

static void fillForm(const QWidget &pane, const QString &label, const DemoServer &server)
{
    Hands::type(pane, "labelField", label);
    Hands::type(pane, "hostField", QStringLiteral("127.0.0.1"));
    Hands::type(pane, "portField", QString::number(server.port()));
    Hands::type(pane, "passwordField", server.password());
}

bool Journey::saveAServer()
{
    const QWidget &pane = page("serversView");
    fillForm(pane, labelOfServer(), m_server);
    Hands::click(pane, "saveToServerListButton");
    if (!expect(Hands::find(*control<QAbstractItemView>(pane, "savedServerTableView"), labelOfServer()).isValid(),
                QStringLiteral("the server is in the list")))
        return false;
    takePicture(QStringLiteral("saved"));
    return true;
}

bool Journey::connectFromTheList()
{
    auto &servers = *control<QAbstractItemView>(page("serversView"), "savedServerTableView");
    Hands::doubleClick(servers, Hands::find(servers, labelOfServer()));
    const auto &players = *control<QAbstractItemView>(page("playersView"), "playersTableView");
    if (!expect(waitUntil([&] { return players.model()->rowCount() > 0; }),
                QStringLiteral("the players of the server are listed")))
        return false;
    if (!expect(status() == QLatin1String("Connected to Harbour Lights (Unranked)"),
                QStringLiteral("the status line tells of the connection")))
        return false;
    if (!expect(waitUntilIdle(), QStringLiteral("connecting comes to its end")))
        return false;
    takePicture(QStringLiteral("players"));
    return true;
}

bool Journey::connectByTheForm()
{
    const QWidget &pane = page("serversView");
    fillForm(pane, QString(), m_playlistServer);
    Hands::click(pane, "connectButton");
    const QString connected = QStringLiteral("Connected to QuickConnect (Unranked)");
    const bool isConnected = waitUntil([&] { return status() == connected && m_application.actions().isIdle(); });
    if (!expect(isConnected, QStringLiteral("the form connects")))
        return false;
    return expect(m_alerts.contains(QStringLiteral("Unsaved Changes to Map Rotation")),
                  QStringLiteral("the unsaved rotation is asked about before another server is connected to"));
}

bool Journey::disconnect()
{
    Hands::click(page("serversView"), "disconnectButton");
    return expect(status() == QLatin1String("Not connected"), QStringLiteral("the connection is ended"));
}
