#include "Journey.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "Hands.h"

#include <QDialog>
#include <QLineEdit>
#include <QTest>

#include <algorithm>

static QString labelOfServer()
{
    return "Harbour Lights";
}

static void fillForm(const QWidget &pane, const QString &label, const DemoServer &server)
{
    Hands::type(pane, "labelField", label);
    Hands::type(pane, "hostField", "127.0.0.1");
    Hands::type(pane, "portField", QString::number(server.port()));
    Hands::type(pane, "passwordField", server.password());
}

void Journey::saveAServer()
{
    const QWidget &pane = page("serversView");
    fillForm(pane, labelOfServer(), m_server);
    Hands::click(pane, "saveToServerListButton");
    expect(Hands::find(*control<QAbstractItemView>(pane, "savedServerTableView"), labelOfServer()).isValid(),
           "the server is in the list");
    takePicture("saved");
}

void Journey::connectFromTheList()
{
    auto &servers = *control<QAbstractItemView>(page("serversView"), "savedServerTableView");
    Hands::doubleClick(servers, Hands::find(servers, labelOfServer()));
    const auto &players = *control<QAbstractItemView>(page("playersView"), "playersTableView");
    expect(waitUntil([&] { return players.model()->rowCount() > 0; }), "the players of the server are listed");
    expect(status() == "Connected to Harbour Lights (Unranked)", "the status line tells of the connection");
    expect(waitUntilIdle(), "connecting comes to its end");
    takePicture("players");
}

void Journey::connectByTheForm()
{
    const QWidget &pane = page("serversView");
    fillForm(pane, QString(), m_playlistServer);
    Hands::click(pane, "connectButton");
    const QString connected = "Connected to QuickConnect (Unranked)";
    const bool isConnected = waitUntil([&] { return status() == connected && m_application.actions().isIdle(); });
    expect(isConnected, "the form connects");
    expect(m_alerts.contains("Unsaved Changes to Map Rotation"),
           "the unsaved rotation is asked about before another server is connected to");
}

void Journey::disconnect()
{
    Hands::click(page("serversView"), "disconnectButton");
    expect(status() == "Not connected", "the connection is ended");
}

/// How a player is recognised in a row of the table: his name and his address.
static QStringList playerOf(const QStringList &row)
{
    return {row.value(1), row.value(3)};
}

void Journey::kickAPlayer()
{
    const QWidget &players = page("playersView");
    auto &table = *control<QAbstractItemView>(players, "playersTableView");
    Hands::click(table, table.model()->index(1, 0));
    const QModelIndexList chosen = table.selectionModel()->selectedRows();
    expect(chosen.size() == 1, "a player can be selected");
    const QStringList kicked = shownRow(table, chosen.first().row());
    Hands::click(players, "kickPlayerButton");
    expect(waitUntilIdle(), "the kick is carried out");
    const QString command = QStringLiteral("clientkick ") + kicked.first();
    expect(m_server.commandsSeen().contains(command), "the kick reaches the server");
    Hands::click(players, "refreshPlayersButton");
    const auto isGone = [&] {
        const QList<QStringList> rows = shownRows(table);
        return std::none_of(rows.begin(), rows.end(),
                            [&](const QStringList &row) { return playerOf(row) == playerOf(kicked); });
    };
    expect(waitUntil(isGone), "the kicked player is gone from the list");
    takePicture("kicked");
}

void Journey::messageAPlayer()
{
    const QWidget &players = page("playersView");
    auto &table = *control<QAbstractItemView>(players, "playersTableView");
    Hands::click(table, table.model()->index(0, 0));
    Hands::click(players, "messagePlayerButton");
    const QDialog &panel = waitForSheet("playerSendMessagePanel");
    Hands::type(panel, "messageTextField", "Welcome! The rules are on our page.");
    takePicture("message");
    Hands::click(panel, "sendButton");
    expect(waitUntilIdle(), "the message is sent");
    const QString command = m_application.server().console().commandHistory().last();
    expect(command.startsWith("tell ") && m_server.commandsSeen().contains(command), "the message goes to the player");
}

void Journey::useTheConsole()
{
    auto *command = control<QLineEdit>(showTab("consoleView"), "consoleInput");
    Hands::type(command, "sv_hostname");
    QTest::keyClick(command, Qt::Key_Return);
    const bool isAnswered = waitUntil([this] { return transcript().contains("\"sv_hostname\" is:"); });
    expect(isAnswered && waitUntilIdle(), "the console shows the server's reply");
    takePicture("console");
}
