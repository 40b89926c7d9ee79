#include "AppDelegate.h"
#include "Controls.h"
#include "Hands.h"
#include "Journey.h"

#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QTest>

void Journey::saveAServer()
{
    const QWidget &pane = page("serversView");
    Hands::fillForm(pane, "Harbour Lights", m_server->port());
    Hands::click(pane, "saveToServerListButton");
    takePicture("saved");
}

void Journey::connectFromTheList()
{
    auto &servers = *control<QAbstractItemView>(window(), "savedServerTableView");
    Hands::doubleClick(servers, Hands::find(servers, "Harbour Lights"));
    const auto &players = *control<QAbstractItemView>(window(), "playersTableView");
    reach("the players of the server are listed", [&] { return players.model()->rowCount() > 0; });
    settle();
    expect(text("toolStripStatusLabelMain") == "Connected to Harbour Lights (Unranked)",
           "the status line tells of the connection");
    takePicture("players");
}

void Journey::kickAPlayer()
{
    auto &table = *control<QAbstractItemView>(window(), "playersTableView");
    Hands::click(table, table.model()->index(1, 0));
    const QStringList kicked = shownRow(table, 1);
    Hands::click(window(), "kickPlayerButton");
    settle();
    expect(m_server->commandsSeen().contains("clientkick " + kicked.first()), "the kick reaches the server");
    Hands::click(window(), "refreshPlayersButton");
    const auto isGone = [&] {
        return table.model()->match(table.model()->index(0, 3), Qt::DisplayRole, kicked.at(3)).isEmpty();
    };
    reach("the kicked player is gone from the list", isGone);
    settle();
    takePicture("kicked");
}

void Journey::messageAPlayer()
{
    auto &table = *control<QAbstractItemView>(window(), "playersTableView");
    Hands::click(table, table.model()->index(0, 0));
    Hands::click(window(), "messagePlayerButton");
    const QDialog &panel = reachSheet("playerSendMessagePanel");
    Hands::type(panel, "messageTextField", "Welcome! The rules are on our page.");
    takePicture("message");
    Hands::click(panel, "sendButton");
    settle();
    expect(m_server->commandsSeen().filter("tell ").size() == 1, "the message goes to the player");
}

void Journey::saveAConfiguration()
{
    const QWidget &builder = showTab("configBuilderView");
    Hands::click(builder, "selectNoneButton");
    Hands::click(builder, "configBuilderGeneralSettingsTable", "Network");
    Hands::click(builder, "configBuilderGeneralSettingsTable", "Server", Qt::ControlModifier);
    Hands::click(builder, "configBuilderGametypeSettingsTable", "Dock Watch");
    takePicture("config");
    Hands::click(builder, "saveConfigButton");
    Hands::chooseFile(reachSheet("saveConfigPanel"), configurationPath());
    settle();
    QFile file(configurationPath());
    expect(file.open(QIODevice::ReadOnly) && file.readAll().contains("line_highestPing \"350\""),
           "the file has the value of the server");
}

void Journey::editSetting(const QString &name, const QString &value)
{
    const QWidget &settings = page("unrankedSettingsView");
    Hands::click(settings, "unrankedOutlineView", name);
    auto &outline = *control<QAbstractItemView>(settings, "unrankedOutlineView");
    QTest::keyClick(&outline, Qt::Key_Return);
    auto *editor = outline.findChild<QLineEdit *>();
    expect(editor != nullptr, "the value can be edited");
    Hands::enter(editor, value);
    const QString written = QStringLiteral("\"%1\"").arg(value);
    reach("the edit is written", [&] { return transcript().contains(written); });
    settle();
}

void Journey::changeSettings()
{
    Hands::click(showTab("unrankedSettingsView"), "settingsGroupList", "Network");
    editSetting("Highest ping", "201");
    editSetting("Play time-out", "121");
    editSetting("Connect time-out", "91");
    takePicture("settings");
    expect(m_server->variable("line_highestPing") == "201", "the server has the edited value");
}

void Journey::compareAndLoad()
{
    Hands::click(showTab("configBuilderView"), "compareConfigButton");
    Hands::chooseFile(reachSheet("compareConfigPanel"), configurationPath());
    const QDialog &comparison = reachSheet("CompareWindow");
    takePicture("compare");
    const auto writes = [this] {
        return m_server->commandsSeen().filter("setadmindvar ").size();
    };
    const qsizetype before = writes();
    Hands::click(comparison, "loadOnlyDifferencesButton");
    reachSheet("ProgressWindowController");
    takePicture("loading");
    settle();
    expect(writes() == before + 3 && m_server->variable("line_highestPing") == "350", "only what differs is written");
}

void Journey::useTheConsole()
{
    Hands::enter(control<QLineEdit>(showTab("consoleView"), "consoleInput"), "sv_hostname");
    reach("the console shows the reply", [this] { return transcript().contains("\"sv_hostname\" is:"); });
    settle();
    takePicture("console");
}

void Journey::disconnect()
{
    Hands::click(window(), "disconnectButton");
    expect(text("toolStripStatusLabelMain") == "Not connected", "the connection is ended");
}

void Journey::connectByTheForm()
{
    Hands::fillForm(page("serversView"), {}, m_playlistServer->port());
    Hands::click(window(), "connectButton");
    reach("the form connects",
          [&] { return text("toolStripStatusLabelMain") == "Connected to QuickConnect (Unranked)"; });
    settle();
    expect(m_alerts == 1, "the unsaved rotation is asked about before another server is connected to");
}
