#pragma once

#include "ActionQueue.h"
#include "Exclusion.h"
#include "PlaylistInst.h"
#include "TabPage.h"

#include <QCoroTask>

#include <QString>

class Alerts;
class ElidingField;
class KelGametype;
class KelMapList;
class KelPlaylists;
class KelServer;
class KeyHandlingTableView;
class MapGametypePairWindowController;
class PlaceholderTable;
class QAction;
class QLabel;

/// The playlists that the server can run, and what is left out of them.
class PlaylistsView : public TabPage
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes, KelMapList &maps,
                  KelPlaylists &playlists, QWidget *parent = nullptr);

public slots:
    void startPlaylistButtonPressed();
    void applyPlaylistChangesButtonPressed();
    void addPlaylistExclusion();
    /// Removes the selected exclusions, here alone; beeps when none is selected.
    void removeExclusionPressed();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void layOut();
    void setUpTables();
    void connectParts();
    void playlistDoubleClicked(const QModelIndex &index);
    void currentPlaylistDidChange();
    /// Follows the connection, the selections and the edits that were not sent.
    void updateControls();
    ExclusionText exclusionTexts() const;
    QCoro::Task<> startPlaylist(PlaylistInst playlist);
    QCoro::Task<> applyExclusions(ExclusionText texts);

    QAction *m_startAction;
    QAction *m_addAction;
    QAction *m_removeAction;
    QAction *m_applyAction;
    ElidingField *currentPlaylistField;
    PlaceholderTable *playlistsTableView;
    KeyHandlingTableView *exclusionsTableView = nullptr;
    /// Tells of edits that were not sent; empty when there are none.
    QLabel *unsentExclusionsLabel;
    MapGametypePairWindowController *mapGametypePairWindowController;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    KelPlaylists &m_playlists;
};
