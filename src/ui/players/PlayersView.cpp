#include "PlayersView.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "Alerts.h"
#include "FilterField.h"
#include "KelServer.h"
#include "Named.h"
#include "PlaceholderTable.h"
#include "PlayerColumns.h"
#include "PlayerCommands.h"
#include "PlayerCountLabel.h"
#include "PlayerListFile.h"
#include "PlayerSendMessage.h"
#include "RefreshTimer.h"
#include "ReplaceQuestion.h"

#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

PlayersView::PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                         QWidget *parent, PlayerRoster::Clock clock)
    : TabPage(parent), m_server(server), m_actions(actions), m_alerts(alerts),
      m_roster(new PlayerRoster(server, std::move(clock), this)),
      m_commands(new PlayerCommands(server, *m_roster, actions, alerts, this)),
      m_refreshAction(
          makeAction(this, tr("&Refresh"), &PlayersView::refreshPlayersButtonPressed, QKeySequence::Refresh)),
      m_kickAction(makeAction(this, tr("&Kick"), &PlayersView::kickPlayerButtonPressed, tr("Ctrl+K"))),
      m_banAction(makeAction(this, tr("&Ban"), &PlayersView::banPlayerButtonPressed)),
      m_tempBanAction(makeAction(this, tr("&Temp Ban"), &PlayersView::tempBanPlayerButtonPressed)),
      m_messageAction(makeAction(this, tr("&Message…"), &PlayersView::messagePlayerButtonPressed, tr("Ctrl+M"))),
      m_kickAllAction(makeAction(this, tr("Kick &All…"), &PlayersView::kickAll)),
      m_saveAction(
          makeAction(this, tr("Save &Player List…"), &PlayersView::savePlayerListButtonPressed, tr("Ctrl+Shift+S")))
{
    m_saveAction->setIconText(tr("Save List…"));
    m_refreshAction->setShortcutContext(Qt::WidgetShortcut); // until the page is in front
    layOut(preferences);
    setUpTable();
    for (QAction *action : {m_kickAction, m_messageAction}) {
        action->setShortcutContext(Qt::WidgetShortcut);
        playersTableView->addAction(action);
    }
    connectSession();
    updateControls();
}

// The Tab key goes through the controls in the order in which they are made.
void PlayersView::layOut(Preferences &preferences)
{
    const QList<QPushButton *> all{new ActionButton(m_refreshAction, "refreshPlayersButton", this),
                                   new ActionButton(m_kickAction, "kickPlayerButton", this),
                                   new ActionButton(m_banAction, "banPlayerButton", this),
                                   new ActionButton(m_tempBanAction, "tempBanPlayerButton", this),
                                   new ActionButton(m_messageAction, "messagePlayerButton", this),
                                   new ActionButton(m_kickAllAction, "kickAllButton", this),
                                   new ActionButton(m_saveAction, "savePlayerListButton", this)};
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : all)
        buttons->addWidget(button);
    buttons->insertSpacing(1, 12);
    buttons->insertStretch(6);
    m_refreshTimer = new RefreshTimer(preferences,
                                      {QStringLiteral("autoUpdatePlayers"), QStringLiteral("autoUpdatePlayersTime"),
                                       QStringLiteral("autoupdatePlayerTimer"), tr("Player refresh interval")},
                                      this);
    playerFilterField = named("playerFilterField", new FilterField(tr("Filter players"), this));
    playersTableView = named("playersTableView", new PlaceholderTable(this), tr("Players"));
    playerCountLabel = new PlayerCountLabel(*m_roster, m_server, this);
    playerSendMessagePanel = new PlayerSendMessage(this);
    auto *below = new QHBoxLayout;
    below->addWidget(m_refreshTimer);
    below->addStretch();
    below->addWidget(playerFilterField);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addLayout(below);
    layout->addWidget(playersTableView, 1);
    layout->addWidget(playerCountLabel);
    setFocusProxy(playersTableView);
    for (ActionButton *button : findChildren<ActionButton *>())
        button->setSuccessor(playersTableView); // else the focus would go on to "Kick All…"
}

void PlayersView::setUpTable()
{
    playersTableView->setModel(m_roster->rows().arranged());
    playersTableView->setSelectionModel(m_roster->rows().selection());
    playersTableView->setSortingEnabled(true);
    playersTableView->sortByColumn(0, Qt::AscendingOrder);
    int section = 0;
    for (const PlayerColumn &column : playerColumns()) {
        if (column.width == PlayerColumn::remainingWidth)
            playersTableView->setStretchedColumn(section);
        else
            playersTableView->setColumnWidth(section, column.width);
        ++section;
    }
}

void PlayersView::connectSession()
{
    connect(m_refreshTimer, &RefreshTimer::due, this, &PlayersView::refreshByItself);
    connect(playerSendMessagePanel, &QDialog::finished, this, &PlayersView::sendMessagePanelDidEnd);
    connect(playerFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_roster->rows().setFilterText(text);
        updateControls();
        playerCountLabel->tell();
    });
    connect(m_roster->rows().selection(), &QItemSelectionModel::selectionChanged, this, &PlayersView::updateControls);
    connect(m_roster, &PlayerRoster::changed, this, &PlayersView::updateControls);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlayersView::connectionDidChange);
    connect(&m_server, &KelServer::connectionBegan, this, &PlayersView::connectionDidBegin);
    connect(&m_server, &KelServer::didConnect, this, [this] { m_isConnecting = false; });
    connect(m_commands, &PlayerCommands::refreshWanted, this,
            [this](std::chrono::seconds delay) { QTimer::singleShot(delay, this, &PlayersView::refreshByItself); });
}

void PlayersView::fillMenu(QMenu &menu)
{
    menu.addAction(m_refreshAction);
    menu.addSeparator();
    menu.addActions({m_messageAction, m_kickAction, m_tempBanAction, m_banAction});
    menu.addSeparator();
    menu.addAction(m_kickAllAction);
}

void PlayersView::fillFileMenu(QMenu &menu)
{
    menu.addAction(m_saveAction);
}

void PlayersView::setInFront(bool isInFront)
{
    m_isInFront = isInFront;
    // Other pages have the same key.
    m_refreshAction->setShortcutContext(isInFront ? Qt::WindowShortcut : Qt::WidgetShortcut);
    if (isInFront && !m_isConnecting)
        refreshByItself();
}

/// A server that is silent or refuses the password gets no request that nobody pressed a button for.
void PlayersView::refreshByItself()
{
    if (m_server.link().mayAskByItself())
        refreshPlayersButtonPressed();
}

void PlayersView::updateControls()
{
    const bool isConnected = m_server.isConnected();
    ArrayController<PlayerRow> &rows = m_roster->rows();
    const bool isAnySelected = rows.selection()->hasSelection() || rows.hiddenSelectedCount() > 0;
    for (QAction *action : {m_kickAction, m_banAction, m_tempBanAction, m_messageAction})
        action->setEnabled(isConnected && isAnySelected);
    for (QAction *action : {m_refreshAction, m_kickAllAction})
        action->setEnabled(isConnected);
    m_saveAction->setEnabled(!m_roster->players().isEmpty());
    playersTableView->setPlaceholder(placeholder());
}

QString PlayersView::placeholder() const
{
    if (!m_roster->players().isEmpty())
        return tr("No player matches the filter.");
    if (!m_server.isConnected())
        return tr("Not connected. Connect to a server to see who is playing.");
    return m_roster->isFetched() ? tr("Nobody is playing. Press \"Refresh\" to look again.")
                                 : tr("The list of players has not arrived yet.");
}

void PlayersView::connectionDidBegin()
{
    m_isConnecting = true;
    m_roster->forget();
}

void PlayersView::connectionDidChange(bool isConnected)
{
    m_isConnecting = false;
    if (!isConnected)
        m_roster->forget();
    updateControls();
}

bool PlayersView::isRefreshDue() const
{
    return m_server.isConnected() && m_isInFront;
}

void PlayersView::refreshPlayersButtonPressed()
{
    // A refresh that still waits for its turn makes this one superfluous.
    if (m_isRefreshWaiting || !isRefreshDue())
        return;
    m_isRefreshWaiting = true;
    m_actions.start(refresh(m_server.link().mayAskByItself()));
}

QCoro::Task<> PlayersView::refresh(bool wasAnswering)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isRefreshWaiting = false;
    const bool hasFailed = wasAnswering && !m_server.link().mayAskByItself(); // while this one waited
    if (!turn || hasFailed)
        co_return;
    co_await updatePlayerList();
}

QCoro::Task<> PlayersView::didConnect()
{
    m_isConnecting = false;
    co_await updatePlayerList();
}

QCoro::Task<> PlayersView::updatePlayerList()
{
    if (!isRefreshDue())
        co_return;
    m_refreshTimer->restart();
    co_await m_roster->fetch();
}

void PlayersView::kickPlayerButtonPressed()
{
    m_commands->kick(m_roster->selected());
}

void PlayersView::banPlayerButtonPressed()
{
    m_commands->ban(m_roster->selected());
}

void PlayersView::tempBanPlayerButtonPressed()
{
    m_commands->tempBan(m_roster->selected());
}

void PlayersView::messagePlayerButtonPressed()
{
    m_recipients = m_roster->selected();
    QStringList names;
    for (const ChosenPlayer &player : std::as_const(m_recipients))
        names.append(player.row.name);
    playerSendMessagePanel->reset();
    playerSendMessagePanel->setRecipients(names);
    playerSendMessagePanel->open();
}

void PlayersView::sendMessagePanelDidEnd()
{
    const QString message = playerSendMessagePanel->messageString();
    if (!message.isEmpty())
        m_commands->tell(m_recipients, message);
}

void PlayersView::kickAll()
{
    m_commands->kickAll();
}

void PlayersView::savePlayerListButtonPressed()
{
    auto *panel = new QFileDialog(this, tr("Save Player List"));
    panel->setObjectName(QStringLiteral("savePlayerListPanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowFlag(Qt::Sheet);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilters({tr("Text (*.txt)"), tr("Comma-separated values (*.csv)")});
    panel->setDefaultSuffix(QStringLiteral("txt"));
    panel->setDirectory(QDir::home());
    // The dialog would ask in a nested event loop; savePlayerListTo asks instead.
    panel->setOption(QFileDialog::DontConfirmOverwrite);
    connect(panel, &QFileDialog::filterSelected, panel, [panel](const QString &filter) {
        panel->setDefaultSuffix(filter.contains(QLatin1String("csv")) ? QStringLiteral("csv") : QStringLiteral("txt"));
    });
    connect(panel, &QFileDialog::fileSelected, this,
            [this, players = m_roster->rows().arrangedObjects()](const QString &path) {
                m_actions.start(savePlayerListTo(path, players));
            });
    panel->open();
}

QCoro::Task<> PlayersView::savePlayerListTo(QString path, QList<PlayerRow> players)
{
    ReplaceQuestion question(m_alerts);
    const bool mayWrite = co_await question.mayWrite(path);
    if (!mayWrite)
        co_return;
    QString error;
    if (savePlayerList(players, path, &error)) {
        m_server.tellOutcome(Outcome::saved(tr("Save List"), path));
        co_return;
    }
    const QString text =
        tr("The player list could not be saved to \"%1\". Nothing was written.\n\n%2").arg(path, error);
    co_await m_alerts.run(tr("Save Failed"), text);
}
