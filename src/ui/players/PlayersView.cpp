#include "PlayersView.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "ButtonAction.h"
#include "ColumnLayout.h"
#include "FilterField.h"
#include "KelServer.h"
#include "PlaceholderTable.h"
#include "PlayerColumns.h"
#include "PlayerCommands.h"
#include "PlayerCountLabel.h"
#include "PlayerListFile.h"
#include "PlayerSendMessage.h"
#include "Preferences.h"
#include "ReplaceQuestion.h"

#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

PlayersView::PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                         QWidget *parent, PlayerRoster::Clock clock)
    : TabPage(parent), refreshPlayersButton(new QPushButton(tr("Refresh"), this)),
      kickPlayerButton(new QPushButton(tr("Kick"), this)), banPlayerButton(new QPushButton(tr("Ban"), this)),
      tempBanPlayerButton(new QPushButton(tr("Temp Ban"), this)),
      messagePlayerButton(new QPushButton(tr("Message…"), this)), kickAllButton(new QPushButton(tr("Kick All…"), this)),
      savePlayerListButton(new QPushButton(tr("Save List…"), this)),
      autoUpdatePlayers(new QCheckBox(tr("Refresh every"), this)), autoUpdatePlayersTime(new QSpinBox(this)),
      playerFilterField(new FilterField(tr("Filter players"), this)), playersTableView(new PlaceholderTable(this)),
      playerSendMessagePanel(new PlayerSendMessage(this)), autoupdatePlayerTimer(new QTimer(this)), m_server(server),
      m_actions(actions), m_alerts(alerts), m_preferences(preferences),
      m_roster(new PlayerRoster(server, std::move(clock), this)),
      m_commands(new PlayerCommands(server, *m_roster, actions, alerts, this))
{
    setUpControls();
    setUpTable();
    playerCountLabel = new PlayerCountLabel(*m_roster, m_server, this);
    layOut();
    connectControls();
    connectSession();
    setFocusProxy(playersTableView);
    updateControls();
    updatePlaceholder();
}

void PlayersView::setUpControls()
{
    refreshPlayersButton->setObjectName(QStringLiteral("refreshPlayersButton"));
    kickPlayerButton->setObjectName(QStringLiteral("kickPlayerButton"));
    banPlayerButton->setObjectName(QStringLiteral("banPlayerButton"));
    tempBanPlayerButton->setObjectName(QStringLiteral("tempBanPlayerButton"));
    messagePlayerButton->setObjectName(QStringLiteral("messagePlayerButton"));
    kickAllButton->setObjectName(QStringLiteral("kickAllButton"));
    savePlayerListButton->setObjectName(QStringLiteral("savePlayerListButton"));
    autoUpdatePlayers->setObjectName(QStringLiteral("autoUpdatePlayers"));
    autoUpdatePlayers->setChecked(m_preferences.boolValue(QStringLiteral("autoUpdatePlayers")));
    autoUpdatePlayersTime->setObjectName(QStringLiteral("autoUpdatePlayersTime"));
    autoUpdatePlayersTime->setAccessibleName(tr("Player refresh interval"));
    autoUpdatePlayersTime->setRange(1, 86400);
    autoUpdatePlayersTime->setSuffix(tr(" s"));
    autoUpdatePlayersTime->setValue(m_preferences.intValue(QStringLiteral("autoUpdatePlayersTime"), 1, 86400));
    autoupdatePlayerTimer->setObjectName(QStringLiteral("autoupdatePlayerTimer"));
    playerFilterField->setObjectName(QStringLiteral("playerFilterField"));
    playerFilterField->setMinimumWidth(220);
}

void PlayersView::setUpTable()
{
    playersTableView->setObjectName(QStringLiteral("playersTableView"));
    playersTableView->setAccessibleName(tr("Players"));
    playersTableView->setModel(m_roster->rows().arranged());
    playersTableView->setSelectionModel(m_roster->rows().selection());
    playersTableView->setSortingEnabled(true);
    playersTableView->sortByColumn(0, Qt::AscendingOrder);
    playersTableView->horizontalHeader()->setStretchLastSection(false);
    int section = 0;
    for (const PlayerColumn &column : playerColumns()) {
        if (column.width == PlayerColumn::remainingWidth)
            playersTableView->horizontalHeader()->setSectionResizeMode(section, QHeaderView::Stretch);
        else
            playersTableView->setColumnWidth(section, column.width);
        ++section;
    }
}

void PlayersView::layOut()
{
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {refreshPlayersButton, kickPlayerButton, banPlayerButton, tempBanPlayerButton,
                                messagePlayerButton, kickAllButton, savePlayerListButton})
        buttons->addWidget(button);
    buttons->insertSpacing(1, 12);
    buttons->insertStretch(6);
    auto *below = new QHBoxLayout;
    below->addWidget(autoUpdatePlayers);
    below->addWidget(autoUpdatePlayersTime);
    below->addStretch();
    below->addWidget(playerFilterField);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addLayout(below);
    layout->addWidget(playersTableView, 1);
    layout->addWidget(playerCountLabel);
}

void PlayersView::connectControls()
{
    connect(refreshPlayersButton, &QPushButton::clicked, this, &PlayersView::refreshPlayersButtonPressed);
    connect(kickPlayerButton, &QPushButton::clicked, this, &PlayersView::kickPlayerButtonPressed);
    connect(banPlayerButton, &QPushButton::clicked, this, &PlayersView::banPlayerButtonPressed);
    connect(tempBanPlayerButton, &QPushButton::clicked, this, &PlayersView::tempBanPlayerButtonPressed);
    connect(messagePlayerButton, &QPushButton::clicked, this, &PlayersView::messagePlayerButtonPressed);
    connect(kickAllButton, &QPushButton::clicked, this, &PlayersView::kickAll);
    connect(savePlayerListButton, &QPushButton::clicked, this, &PlayersView::savePlayerListButtonPressed);
    connect(autoUpdatePlayers, &QCheckBox::toggled, this, &PlayersView::autoupdatePlayerChanged);
    connect(autoUpdatePlayersTime, &QSpinBox::valueChanged, this, &PlayersView::autoupdatePlayerTimeChanged);
    connect(autoupdatePlayerTimer, &QTimer::timeout, this, &PlayersView::refreshByItself);
    connect(playerSendMessagePanel, &QDialog::finished, this, &PlayersView::sendMessagePanelDidEnd);
    connect(playerFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_roster->rows().setFilterText(text);
        updatePlaceholder();
        updateControls();
        playerCountLabel->tell();
    });
    connect(m_roster->rows().selection(), &QItemSelectionModel::selectionChanged, this, &PlayersView::updateControls);
}

void PlayersView::connectSession()
{
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlayersView::connectionDidChange);
    connect(&m_server, &KelServer::connectionBegan, this, &PlayersView::connectionDidBegin);
    connect(&m_server, &KelServer::didConnect, this, [this] { m_isConnecting = false; });
    connect(m_roster, &PlayerRoster::changed, this, &PlayersView::updatePlaceholder);
    connect(m_roster, &PlayerRoster::changed, this, &PlayersView::updateControls);
    connect(m_commands, &PlayerCommands::refreshWanted, this,
            [this](std::chrono::seconds delay) { QTimer::singleShot(delay, this, &PlayersView::refreshByItself); });
}

void PlayersView::fillMenu(QMenu &menu)
{
    m_refreshAction = addRefreshAction(menu, refreshPlayersButton);
    menu.addSeparator();
    addButtonAction(menu, tr("&Message…"), QKeySequence(tr("Ctrl+M")), messagePlayerButton, playersTableView);
    addButtonAction(menu, tr("&Kick"), QKeySequence(tr("Ctrl+K")), kickPlayerButton, playersTableView);
    addButtonAction(menu, tr("&Temp Ban"), QKeySequence(), tempBanPlayerButton);
    addButtonAction(menu, tr("&Ban"), QKeySequence(), banPlayerButton);
    menu.addSeparator();
    addButtonAction(menu, tr("Kick &All…"), QKeySequence(), kickAllButton);
}

void PlayersView::fillFileMenu(QMenu &menu)
{
    addButtonAction(menu, tr("Save &Player List…"), QKeySequence(tr("Ctrl+Shift+S")), savePlayerListButton);
}

static QString columnsKey()
{
    return QStringLiteral("window/playersTable");
}

void PlayersView::restoreLayout(const Preferences &preferences)
{
    restoreColumns(preferences, columnsKey(), *playersTableView->horizontalHeader());
}

void PlayersView::saveLayout(Preferences &preferences) const
{
    saveColumns(preferences, columnsKey(), *playersTableView->horizontalHeader());
}

void PlayersView::setInFront(bool isInFront)
{
    m_isInFront = isInFront;
    setActsInWindow(m_refreshAction, isInFront);
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
    const auto enable = [this](QPushButton *button, bool isEnabled) {
        if (!isEnabled && button->hasFocus())
            playersTableView->setFocus(); // Qt would give the focus to "Kick All…"
        button->setEnabled(isEnabled);
    };
    for (QPushButton *button : {kickPlayerButton, banPlayerButton, tempBanPlayerButton, messagePlayerButton})
        enable(button, isConnected && isAnySelected);
    for (QPushButton *button : {refreshPlayersButton, kickAllButton})
        enable(button, isConnected);
    enable(savePlayerListButton, !m_roster->players().isEmpty());
}

void PlayersView::updatePlaceholder()
{
    if (!m_roster->players().isEmpty())
        playersTableView->setPlaceholder(tr("No player matches the filter."));
    else if (m_server.isConnected() && !m_roster->isFetched())
        playersTableView->setPlaceholder(tr("The list of players has not arrived yet."));
    else if (m_server.isConnected())
        playersTableView->setPlaceholder(tr("Nobody is playing. Press \"Refresh\" to look again."));
    else
        playersTableView->setPlaceholder(tr("Not connected. Connect to a server to see who is playing."));
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
    updatePlaceholder();
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
    setupAutoupdatePlayerTimer();
    co_await m_roster->fetch();
}

void PlayersView::setupAutoupdatePlayerTimer()
{
    autoupdatePlayerTimer->stop();
    if (!m_preferences.boolValue(QStringLiteral("autoUpdatePlayers")))
        return;
    const int seconds = m_preferences.intValue(QStringLiteral("autoUpdatePlayersTime"),
                                               autoUpdatePlayersTime->minimum(), autoUpdatePlayersTime->maximum());
    autoupdatePlayerTimer->start(std::chrono::seconds(seconds));
}

void PlayersView::autoupdatePlayerChanged()
{
    m_preferences.setValue(QStringLiteral("autoUpdatePlayers"), autoUpdatePlayers->isChecked());
    setupAutoupdatePlayerTimer();
}

void PlayersView::autoupdatePlayerTimeChanged()
{
    m_preferences.setValue(QStringLiteral("autoUpdatePlayersTime"), autoUpdatePlayersTime->value());
    setupAutoupdatePlayerTimer();
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
