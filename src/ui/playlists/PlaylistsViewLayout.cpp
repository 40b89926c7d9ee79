#include "PlaylistsView.h"

#include "ElidingField.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "PlaceholderTable.h"
#include "PlaylistDelegate.h"

#include <QDataStream>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

PlaylistsView::PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes,
                             KelMapList &maps, KelPlaylists &playlists, QWidget *parent)
    : QWidget(parent), currentPlaylistField(new ElidingField(this)), playlistsTableView(new PlaceholderTable(this)),
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
    // The order is the server's; a third click on a column title returns to it.
    exclusionsTableView->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    exclusionsTableView->horizontalHeader()->setSortIndicatorClearable(true);
    exclusionsTableView->setSortingEnabled(true);
    exclusionsTableView->setColumnWidth(0, 240);
    playlistsTableView->installEventFilter(this);
}

static QLabel *titleOf(const QString &text, QWidget *control)
{
    auto *label = new QLabel(text, control->parentWidget());
    label->setBuddy(control);
    return label;
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
    // Top to bottom, left to right.
    const QList<QWidget *> order{playlistsTableView, startPlaylistButton,   exclusionsTableView,
                                 addExclusionButton, removeExclusionButton, applyExclusionsButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void PlaylistsView::connectControls()
{
    connect(startPlaylistButton, &QPushButton::clicked, this, &PlaylistsView::startPlaylistButtonPressed);
    connect(playlistsTableView, &QTableView::doubleClicked, this, &PlaylistsView::startPlaylistButtonPressed);
    connect(addExclusionButton, &QPushButton::clicked, this, &PlaylistsView::addPlaylistExclusion);
    connect(removeExclusionButton, &QPushButton::clicked, this, &PlaylistsView::removeExclusionPressed);
    connect(applyExclusionsButton, &QPushButton::clicked, this, &PlaylistsView::applyPlaylistChangesButtonPressed);
    connect(mapGametypePairWindowController, &MapGametypePairWindowController::didPickMap, &m_playlists,
            &KelPlaylists::addExclusion);
    connect(&m_playlists, &KelPlaylists::currentPlaylistChanged, this, &PlaylistsView::currentPlaylistDidChange);
    connect(&m_playlists, &KelPlaylists::hasUnsentExclusionsChanged, this, &PlaylistsView::showUnsentExclusions);
    connect(m_playlists.exclusionListController.selection(), &QItemSelectionModel::selectionChanged, this,
            &PlaylistsView::exclusionSelectionDidChange);
    connect(&m_server, &KelServer::isConnectedChanged, this, &PlaylistsView::updatePlaceholders);
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

QByteArray PlaylistsView::saveLayout() const
{
    QByteArray layout;
    QDataStream stream(&layout, QIODevice::WriteOnly);
    stream << playlistsTableView->horizontalHeader()->saveState()
           << exclusionsTableView->horizontalHeader()->saveState();
    return layout;
}

void PlaylistsView::restoreLayout(const QByteArray &layout)
{
    QDataStream stream(layout);
    QByteArray playlists;
    QByteArray exclusions;
    stream >> playlists >> exclusions;
    if (stream.status() != QDataStream::Ok)
        return;
    playlistsTableView->horizontalHeader()->restoreState(playlists);
    exclusionsTableView->horizontalHeader()->restoreState(exclusions);
}
