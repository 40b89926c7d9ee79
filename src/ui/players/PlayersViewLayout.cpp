#include "PlayersView.h"

#include "KelServer.h"
#include "PlaceholderTable.h"
#include "PlayerColumns.h"
#include "PlayerSendMessage.h"
#include "Preferences.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

PlayersView::PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                         QWidget *parent)
    : QWidget(parent), refreshPlayersButton(new QPushButton(tr("Refresh"), this)),
      kickPlayerButton(new QPushButton(tr("Kick"), this)), banPlayerButton(new QPushButton(tr("Ban"), this)),
      tempBanPlayerButton(new QPushButton(tr("Temp Ban"), this)),
      messagePlayerButton(new QPushButton(tr("Message…"), this)), kickAllButton(new QPushButton(tr("Kick All…"), this)),
      savePlayerListButton(new QPushButton(tr("Save List…"), this)),
      autoUpdatePlayers(new QCheckBox(tr("Refresh every"), this)), autoUpdatePlayersTime(new QSpinBox(this)),
      playerFilterField(new QLineEdit(this)), playersTableView(new PlaceholderTable(this)),
      playersController(new ArrayController<PlayerRow>(playerTableColumns(), playerKey, this)),
      playerSendMessagePanel(new PlayerSendMessage(this)), m_server(server), m_actions(actions), m_alerts(alerts),
      m_preferences(preferences)
{
    layOut();
    connectControls();
    selectionDidChange();
    updatePlaceholder();
}

void PlayersView::layOut()
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
    playerFilterField->setObjectName(QStringLiteral("playerFilterField"));
    playerFilterField->setAccessibleName(tr("Filter players"));
    playerFilterField->setPlaceholderText(tr("Filter players"));
    // Its icon is looked for in every icon theme; until there is text it is not shown anyway.
    connect(playerFilterField, &QLineEdit::textChanged, playerFilterField,
            [field = playerFilterField] { field->setClearButtonEnabled(true); });
    playersTableView->setObjectName(QStringLiteral("playersTableView"));
    playersTableView->setAccessibleName(tr("Players"));
    playersTableView->setModel(playersController->arranged());
    playersTableView->setSelectionModel(playersController->selection());
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
    playerFilterField->setMinimumWidth(220);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addLayout(below);
    layout->addWidget(playersTableView, 1);
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
    connect(&autoupdatePlayerTimer, &QTimer::timeout, this, &PlayersView::refreshPlayersButtonPressed);
    connect(playerSendMessagePanel, &QDialog::finished, this, &PlayersView::sendMessagePanelDidEnd);
    connect(playerFilterField, &QLineEdit::textChanged, this, [this](const QString &text) {
        playersController->setFilterText(text);
        updatePlaceholder();
    });
    connect(playersController->selection(), &QItemSelectionModel::selectionChanged, this,
            &PlayersView::selectionDidChange);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlayersView::updatePlaceholder);
    connect(&m_server, &KelServer::connectionBegan, this, &PlayersView::forgetPlayers);
}

void PlayersView::selectionDidChange()
{
    const bool isAnySelected = playersController->selection()->hasSelection();
    for (QPushButton *button : {kickPlayerButton, banPlayerButton, tempBanPlayerButton, messagePlayerButton}) {
        if (!isAnySelected && button->hasFocus())
            playersTableView->setFocus(); // else it would go on to "Kick All…"
        button->setEnabled(isAnySelected);
    }
}

void PlayersView::updatePlaceholder()
{
    if (!playersController->content().isEmpty())
        playersTableView->setPlaceholder(tr("No player matches the filter."));
    else if (m_server.isConnected() && !m_isListFetched)
        playersTableView->setPlaceholder(tr("The list of players has not arrived yet."));
    else if (m_server.isConnected())
        playersTableView->setPlaceholder(tr("Nobody is playing. Press \"Refresh\" to look again."));
    else
        playersTableView->setPlaceholder(tr("Not connected. Connect to a server to see who is playing."));
}
