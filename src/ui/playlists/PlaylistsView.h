#pragma once

#include "ActionQueue.h"
#include "ExclusionText.h"
#include "PlaylistInst.h"

#include <QCoroTask>

#include <QLabel>
#include <QPushButton>
#include <QWidget>

class Alerts;
class ElidingField;
class KelGametype;
class KelMapList;
class KelPlaylists;
class KelServer;
class MapGametypePairWindowController;
class KeyHandlingTableView;
class PlaceholderTable;

/// The playlists that the server can run, and what is left out of them.
class PlaylistsView : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes, KelMapList &maps,
                  KelPlaylists &playlists, QWidget *parent = nullptr);

    /// Column widths and sort orders, for the next start.
    QByteArray saveLayout() const;
    void restoreLayout(const QByteArray &layout);

    ElidingField *currentPlaylistField;
    PlaceholderTable *playlistsTableView;
    QPushButton *startPlaylistButton;
    KeyHandlingTableView *exclusionsTableView;
    /// Tells of edits that were not sent; empty when there are none.
    QLabel *unsentExclusionsLabel;
    QPushButton *addExclusionButton;
    QPushButton *removeExclusionButton;
    QPushButton *applyExclusionsButton;
    MapGametypePairWindowController *mapGametypePairWindowController;

public slots:
    void startPlaylistButtonPressed();
    void applyPlaylistChangesButtonPressed();
    void addPlaylistExclusion();
    /// Removes the selected exclusions, here alone; beeps when none is selected.
    void removeExclusionPressed();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void nameControls();
    void setUpTables();
    void layOut();
    void connectControls();
    void currentPlaylistDidChange();
    void exclusionSelectionDidChange();
    void showUnsentExclusions(bool hasUnsent);
    void updatePlaceholders();
    ExclusionText exclusionTexts() const;
    QCoro::Task<> startPlaylist(PlaylistInst playlist);
    QCoro::Task<> applyExclusions(ExclusionText texts);
    QCoro::Task<> tellOfFailure(QString command, QString error);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    KelPlaylists &m_playlists;
};
