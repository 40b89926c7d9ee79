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
class QLabel;
class QPushButton;

/// The playlists that the server can run, and what is left out of them.
class PlaylistsView : public TabPage
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    PlaylistsView(KelServer &server, ActionQueue &actions, Alerts &alerts, KelGametype &gametypes, KelMapList &maps,
                  KelPlaylists &playlists, QWidget *parent = nullptr);

    void restoreLayout(const Preferences &preferences) override;
    void saveLayout(Preferences &preferences) const override;

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
    void playlistDoubleClicked(const QModelIndex &index);
    void updateButtons();
    void currentPlaylistDidChange();
    void exclusionSelectionDidChange();
    void showUnsentExclusions(bool hasUnsent);
    void updatePlaceholders();
    ExclusionText exclusionTexts() const;
    QCoro::Task<> startPlaylist(PlaylistInst playlist);
    QCoro::Task<> applyExclusions(ExclusionText texts);
    QCoro::Task<> tellOfFailure(QString command, QString error);

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

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    KelPlaylists &m_playlists;
};
