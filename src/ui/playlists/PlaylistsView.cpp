#include "PlaylistsView.h"

#include "Alerts.h"
#include "DvarSettingList.h"
#include "ElidingField.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "LeftDoubleClick.h"
#include "MapGametypePairWindowController.h"
#include "PlaceholderTable.h"
#include "PlaylistDelegate.h"
#include "Preferences.h"
#include "ServerAction.h"
#include "TitleLabel.h"

#include <QDataStream>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

PlaylistsView::PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes,
                             KelMapList &maps, KelPlaylists &playlists, QWidget *parent)
    : TabPage(parent), currentPlaylistField(new ElidingField(this)), playlistsTableView(new PlaceholderTable(this)),
      startPlaylistButton(new QPushButton(tr("Start Playlist"), this)),
      exclusionsTableView(new KeyHandlingTableView(this)), unsentExclusionsLabel(new QLabel(this)),
      addExclusionButton(new QPushButton(tr("Add Exclusion…"), this)),
      removeExclusionButton(new QPushButton(tr("Remove"), this)),
      applyExclusionsButton(new QPushButton(tr("Apply Exclusions"), this)),
      mapGametypePairWindowController(new MapGametypePairWindowController(maps, gametypes, this)), m_server(server),
      m_actions(actions), m_alerts(alerts), m_gametypes(gametypes), m_maps(maps), m_playlists(playlists)
{
    nameControls();
    setUpTables();
    layOut();
    connectControls();
    currentPlaylistDidChange();
    updateButtons();
    exclusionSelectionDidChange();
    showUnsentExclusions(m_playlists.hasUnsentExclusions());
    updatePlaceholders();
}

void PlaylistsView::nameControls()
{
    currentPlaylistField->setObjectName(QStringLiteral("currentPlaylistField"));
    currentPlaylistField->setAccessibleName(tr("Current playlist"));
    currentPlaylistField->setPlaceholderText(tr("Unknown"));
    playlistsTableView->setObjectName(QStringLiteral("playlistsTableView"));
    playlistsTableView->setAccessibleName(tr("Playlists"));
    startPlaylistButton->setObjectName(QStringLiteral("startPlaylistButton"));
    startPlaylistButton->setToolTip(tr("Run the selected playlist; a ranked server begins it after the current map"));
    exclusionsTableView->setDeleteHandler([this] { removeExclusionPressed(); });
    exclusionsTableView->setObjectName(QStringLiteral("exclusionsTableView"));
    exclusionsTableView->setAccessibleName(tr("Exclusions"));
    unsentExclusionsLabel->setObjectName(QStringLiteral("unsentExclusionsLabel"));
    addExclusionButton->setObjectName(QStringLiteral("addExclusionButton"));
    removeExclusionButton->setObjectName(QStringLiteral("removeExclusionButton"));
    applyExclusionsButton->setObjectName(QStringLiteral("applyExclusionsButton"));
    applyExclusionsButton->setToolTip(tr("Send the exclusions to the server"));
}

void PlaylistsView::setUpTables()
{
    playlistsTableView->setModel(m_playlists.playlistList.arranged());
    playlistsTableView->setSelectionModel(m_playlists.playlistList.selection());
    playlistsTableView->setSelectionMode(QAbstractItemView::SingleSelection);
    playlistsTableView->setItemDelegate(new PlaylistDelegate(m_playlists, playlistsTableView));
    playlistsTableView->setSortingEnabled(true);
    playlistsTableView->sortByColumn(0, Qt::AscendingOrder);
    playlistsTableView->setColumnWidth(0, 48);
    playlistsTableView->setColumnWidth(1, 215);
    exclusionsTableView->setModel(m_playlists.exclusionListController.arranged());
    exclusionsTableView->setSelectionModel(m_playlists.exclusionListController.selection());
    // The table starts in the server's order; a third click on a column title returns to it.
    exclusionsTableView->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    exclusionsTableView->horizontalHeader()->setSortIndicatorClearable(true);
    exclusionsTableView->setSortingEnabled(true);
    exclusionsTableView->setColumnWidth(0, 240);
    playlistsTableView->installEventFilter(this);
}

void PlaylistsView::layOut()
{
    auto *current = new QHBoxLayout;
    current->addWidget(titleOf(tr("Current playlist"), currentPlaylistField));
    current->addWidget(currentPlaylistField, 1);
    auto *start = new QHBoxLayout;
    start->addStretch();
    start->addWidget(startPlaylistButton);
    auto *exclusionsTitle = new QHBoxLayout;
    exclusionsTitle->addWidget(titleOf(tr("Exclusions"), exclusionsTableView));
    exclusionsTitle->addStretch();
    exclusionsTitle->addWidget(unsentExclusionsLabel);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(addExclusionButton);
    buttons->addWidget(removeExclusionButton);
    buttons->addStretch();
    buttons->addWidget(applyExclusionsButton);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(current);
    layout->addSpacing(4);
    layout->addWidget(titleOf(tr("Playlists"), playlistsTableView));
    layout->addWidget(playlistsTableView, 3);
    layout->addLayout(start);
    layout->addSpacing(4);
    layout->addLayout(exclusionsTitle);
    layout->addWidget(exclusionsTableView, 2);
    layout->addLayout(buttons);
    // The Tab key goes from top to bottom and from left to right.
    const QList<QWidget *> order{playlistsTableView, startPlaylistButton,   exclusionsTableView,
                                 addExclusionButton, removeExclusionButton, applyExclusionsButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
    setFocusProxy(playlistsTableView);
}

void PlaylistsView::connectControls()
{
    connect(startPlaylistButton, &QPushButton::clicked, this, &PlaylistsView::startPlaylistButtonPressed);
    connect(new LeftDoubleClick(playlistsTableView), &LeftDoubleClick::doubleClicked, this,
            &PlaylistsView::playlistDoubleClicked);
    connect(addExclusionButton, &QPushButton::clicked, this, &PlaylistsView::addPlaylistExclusion);
    connect(removeExclusionButton, &QPushButton::clicked, this, &PlaylistsView::removeExclusionPressed);
    connect(applyExclusionsButton, &QPushButton::clicked, this, &PlaylistsView::applyPlaylistChangesButtonPressed);
    connect(mapGametypePairWindowController, &MapGametypePairWindowController::didPickMap, &m_playlists,
            &KelPlaylists::addExclusion);
    connect(&m_playlists, &KelPlaylists::currentPlaylistChanged, this, &PlaylistsView::currentPlaylistDidChange);
    connect(&m_playlists, &KelPlaylists::hasUnsentExclusionsChanged, this, &PlaylistsView::showUnsentExclusions);
    connect(m_playlists.exclusionListController.selection(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsView::exclusionSelectionDidChange);
    connect(m_playlists.playlistList.selection(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsView::updateButtons);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlaylistsView::updatePlaceholders);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlaylistsView::updateButtons);
}

void PlaylistsView::startPlaylistButtonPressed()
{
    if (const std::optional<PlaylistInst> chosen = m_playlists.selectedPlaylist())
        m_actions.start(startPlaylist(*chosen));
}

void PlaylistsView::playlistDoubleClicked(const QModelIndex &index)
{
    if (m_server.isConnected())
        m_actions.start(startPlaylist(m_playlists.playlistList.objectAt(index)));
}

QCoro::Task<> PlaylistsView::startPlaylist(PlaylistInst playlist)
{
    ServerAction action(m_server, m_actions, {.action = tr("Start Playlist"), .targets = {playlist.name}});
    co_await action.begin();
    const QString variable = QStringLiteral("playlist");
    const QString number = QString::number(playlist.ID);
    co_await action.write(variable, number);
    if (!action)
        co_return;
    m_playlists.updateControls();
    // A failed write does not end this: the server may have taken the playlist although its answer was lost.
    if (m_server.isRanked()) {
        const QString text =
            tr("The \"%1\" playlist will begin as soon as the current map completes.").arg(playlist.name);
        const QStringList justOk;
        const AlertManner goodNews{.isGoodNews = true};
        co_await m_alerts.run(tr("Playlist Has Been Queued"), text, justOk, goodNews);
        co_return;
    }
    const QString line = QStringLiteral("map_rotate");
    co_await action.send(line);
}

ExclusionText PlaylistsView::exclusionTexts() const
{
    QHash<QString, QString> maps;
    for (const MapInst &map : m_maps.filteredList())
        maps.insert(map.name, map.dvarName);
    QHash<QString, QString> gametypes;
    for (const auto &gametype : m_gametypes.gametypeList())
        gametypes.insert(gametype->name(), gametype->dvarName());
    return exclusionText(m_playlists.exclusions(), maps, gametypes);
}

void PlaylistsView::applyPlaylistChangesButtonPressed()
{
    m_actions.start(applyExclusions(exclusionTexts()));
}

QCoro::Task<> PlaylistsView::applyExclusions(ExclusionText texts)
{
    ServerAction action(m_server, m_actions, {.action = tr("Apply Exclusions")});
    co_await action.begin();
    const QList<std::pair<QString, QString>> writes{{QStringLiteral("playlist_excludeMap"), texts.maps},
                                                    {QStringLiteral("playlist_excludeGametype"), texts.gametypes},
                                                    {QStringLiteral("playlist_excludeGametypeMap"), texts.pairs}};
    for (const std::pair<QString, QString> &write : writes) {
        co_await action.write(write.first, write.second);
        if (!action)
            co_return;
    }
    m_playlists.updateControls();
}

void PlaylistsView::addPlaylistExclusion()
{
    mapGametypePairWindowController->setMode(MapGametypePairWindowController::Mode::PlaylistExclusion);
    mapGametypePairWindowController->open();
}

void PlaylistsView::removeExclusionPressed()
{
    m_playlists.deleteSelection();
}

bool PlaylistsView::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return TabPage::eventFilter(object, event);
    const auto *press = static_cast<QKeyEvent *>(event);
    const bool isReturn = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    if (object == playlistsTableView && isReturn && playlistsTableView->selectionModel()->hasSelection()) {
        if (!press->isAutoRepeat())
            startPlaylistButton->click();
        return true;
    }
    return TabPage::eventFilter(object, event);
}

void PlaylistsView::currentPlaylistDidChange()
{
    const std::optional<PlaylistInst> current = m_playlists.currentPlaylist();
    currentPlaylistField->showText(current ? current->name : QString());
    playlistsTableView->viewport()->update(); // another row is marked as current
}

void PlaylistsView::updateButtons()
{
    const bool canStart = m_server.isConnected() && m_playlists.playlistList.selection()->hasSelection();
    if (!canStart && startPlaylistButton->hasFocus())
        playlistsTableView->setFocus(); // Qt would give the focus to the next button
    startPlaylistButton->setEnabled(canStart);
    for (QPushButton *button : {addExclusionButton, applyExclusionsButton}) {
        if (!m_server.isConnected() && button->hasFocus())
            exclusionsTableView->setFocus();
        button->setEnabled(m_server.isConnected());
    }
}

void PlaylistsView::exclusionSelectionDidChange()
{
    const bool isAnySelected = m_playlists.exclusionListController.selection()->hasSelection();
    if (!isAnySelected && removeExclusionButton->hasFocus())
        exclusionsTableView->setFocus(); // Qt would give the focus to the next button
    removeExclusionButton->setEnabled(isAnySelected);
}

void PlaylistsView::showUnsentExclusions(bool hasUnsent)
{
    unsentExclusionsLabel->setText(hasUnsent ? tr("Not yet applied. Starting a playlist discards these changes.")
                                             : QString());
}

void PlaylistsView::updatePlaceholders()
{
    if (m_server.isConnected()) {
        playlistsTableView->setPlaceholder(
            tr("No playlists are known, as their file was not read. Connect again to read it anew."));
        exclusionsTableView->setPlaceholder(
            tr("Nothing is excluded. Press \"Add Exclusion…\" to leave out a map or a gametype."));
        return;
    }
    playlistsTableView->setPlaceholder(tr("Not connected. Connect to a server to see the playlists."));
    exclusionsTableView->setPlaceholder(tr("Not connected. Connect to a server to see what it leaves out."));
}

static QString layoutKey()
{
    return QStringLiteral("window/playlists");
}

void PlaylistsView::saveLayout(Preferences &preferences) const
{
    QByteArray layout;
    QDataStream stream(&layout, QIODevice::WriteOnly);
    stream << playlistsTableView->horizontalHeader()->saveState()
           << exclusionsTableView->horizontalHeader()->saveState();
    preferences.setValue(layoutKey(), layout);
}

void PlaylistsView::restoreLayout(const Preferences &preferences)
{
    QDataStream stream(preferences.value(layoutKey()).toByteArray());
    QByteArray playlists;
    QByteArray exclusions;
    stream >> playlists >> exclusions;
    if (stream.status() != QDataStream::Ok)
        return;
    playlistsTableView->horizontalHeader()->restoreState(playlists);
    exclusionsTableView->horizontalHeader()->restoreState(exclusions);
}
