#include "PlaylistsView.h"

#include "ActionButton.h"
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
#include "Named.h"
#include "PlaceholderTable.h"
#include "PlaylistDelegate.h"
#include "ServerAction.h"
#include "TitleLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

// The Tab key goes through the controls in the order in which they are made: top to bottom, left to right.
PlaylistsView::PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes,
                             KelMapList &maps, KelPlaylists &playlists, QWidget *parent)
    : TabPage(parent),
      m_startAction(makeAction(this, tr("Start Playlist"), &PlaylistsView::startPlaylistButtonPressed)),
      m_addAction(makeAction(this, tr("Add Exclusion…"), &PlaylistsView::addPlaylistExclusion)),
      m_removeAction(makeAction(this, tr("Remove"), &PlaylistsView::removeExclusionPressed)),
      m_applyAction(makeAction(this, tr("Apply Exclusions"), &PlaylistsView::applyPlaylistChangesButtonPressed)),
      currentPlaylistField(named("currentPlaylistField", new ElidingField(this), tr("Current playlist"))),
      playlistsTableView(named("playlistsTableView", new PlaceholderTable(this), tr("Playlists"))),
      unsentExclusionsLabel(named("unsentExclusionsLabel", new QLabel(this))),
      mapGametypePairWindowController(new MapGametypePairWindowController(maps, gametypes, this)), m_server(server),
      m_actions(actions), m_alerts(alerts), m_gametypes(gametypes), m_maps(maps), m_playlists(playlists)
{
    currentPlaylistField->setPlaceholderText(tr("Unknown"));
    m_startAction->setToolTip(tr("Run the selected playlist; a ranked server begins it after the current map"));
    m_applyAction->setToolTip(tr("Send the exclusions to the server"));
    layOut();
    setUpTables();
    connectParts();
    currentPlaylistDidChange();
    updateControls();
    setFocusProxy(playlistsTableView);
}

void PlaylistsView::layOut()
{
    auto *startButton = new ActionButton(m_startAction, "startPlaylistButton", this);
    startButton->setSuccessor(playlistsTableView); // else the focus would go on to the next button
    exclusionsTableView = named("exclusionsTableView", new KeyHandlingTableView(this), tr("Exclusions"));
    auto *buttons = new QHBoxLayout;
    for (const auto &[action, name] : {std::pair<QAction *, const char *>(m_addAction, "addExclusionButton"),
                                       {m_removeAction, "removeExclusionButton"},
                                       {m_applyAction, "applyExclusionsButton"}}) {
        auto *button = new ActionButton(action, name, this);
        button->setSuccessor(exclusionsTableView);
        buttons->addWidget(button);
    }
    buttons->insertStretch(2);
    auto *current = new QHBoxLayout;
    current->addWidget(titleOf(tr("Current playlist"), currentPlaylistField));
    current->addWidget(currentPlaylistField, 1);
    auto *exclusionsTitle = new QHBoxLayout;
    exclusionsTitle->addWidget(titleOf(tr("Exclusions"), exclusionsTableView));
    exclusionsTitle->addStretch();
    exclusionsTitle->addWidget(unsentExclusionsLabel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(current);
    layout->addSpacing(4);
    layout->addWidget(titleOf(tr("Playlists"), playlistsTableView));
    layout->addWidget(playlistsTableView, 3);
    layout->addWidget(startButton, 0, Qt::AlignRight);
    layout->addSpacing(4);
    layout->addLayout(exclusionsTitle);
    layout->addWidget(exclusionsTableView, 2);
    layout->addLayout(buttons);
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
    playlistsTableView->installEventFilter(this);
    exclusionsTableView->setModel(m_playlists.exclusionListController.arranged());
    exclusionsTableView->setSelectionModel(m_playlists.exclusionListController.selection());
    exclusionsTableView->sortOnDemand(true); // the order is the server's
    exclusionsTableView->setColumnWidth(0, 240);
    exclusionsTableView->setDeleteHandler([this] { removeExclusionPressed(); });
}

void PlaylistsView::connectParts()
{
    connect(new LeftDoubleClick(playlistsTableView), &LeftDoubleClick::doubleClicked, this,
            &PlaylistsView::playlistDoubleClicked);
    connect(mapGametypePairWindowController, &MapGametypePairWindowController::didPickMap, &m_playlists,
            &KelPlaylists::addExclusion);
    connect(&m_playlists, &KelPlaylists::currentPlaylistChanged, this, &PlaylistsView::currentPlaylistDidChange);
    connect(&m_playlists, &KelPlaylists::hasUnsentExclusionsChanged, this, &PlaylistsView::updateControls);
    connect(m_playlists.exclusionListController.selection(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsView::updateControls);
    connect(m_playlists.playlistList.selection(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsView::updateControls);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlaylistsView::updateControls);
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
            m_startAction->trigger();
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

void PlaylistsView::updateControls()
{
    const bool isConnected = m_server.isConnected();
    m_startAction->setEnabled(isConnected && m_playlists.playlistList.selection()->hasSelection());
    m_addAction->setEnabled(isConnected);
    m_removeAction->setEnabled(m_playlists.exclusionListController.selection()->hasSelection());
    m_applyAction->setEnabled(isConnected);
    unsentExclusionsLabel->setText(m_playlists.hasUnsentExclusions()
                                       ? tr("Not yet applied. Starting a playlist discards these changes.")
                                       : QString());
    playlistsTableView->setPlaceholder(
        isConnected ? tr("No playlists are known, as their file was not read. Connect again to read it anew.")
                    : tr("Not connected. Connect to a server to see the playlists."));
    exclusionsTableView->setPlaceholder(
        isConnected ? tr("Nothing is excluded. Press \"Add Exclusion…\" to leave out a map or a gametype.")
                    : tr("Not connected. Connect to a server to see what it leaves out."));
}
