#pragma once

#include "ArrayController.h"
#include "Exclusion.h"
#include "PlaylistInst.h"
#include "SharedInstance.h"

#include <QCoroTask>

#include <QObject>
#include <QStringList>

#include <optional>

class Alerts;
class KelGametype;
class KelMapList;
class KelServer;

/// The playlists of the game, which of them the server runs, and what is left out of them. Main thread only.
class KelPlaylists : public QObject
{
    Q_OBJECT
public:
    /// What is handed in outlives this. The latest one made is the shared one.
    /// @param resources  the folder of the shipped files.
    KelPlaylists(KelServer &server, KelGametype &gametypes, KelMapList &maps, Alerts &alerts, const QString &resources,
                 QObject *parent = nullptr);

    /// @return the latest one made, or null.
    static KelPlaylists *sharedKelPlaylists() { return SharedInstance<KelPlaylists>::latest(); }

    /// Reads the playlist definitions anew; tells the user when they cannot be read, and both lists are empty then.
    QCoro::Task<> loadPlaylists();
    /// Shows what the session knows of the server: its playlist and its exclusions. Edits that were not sent are lost.
    void updateControls();

    /// Adds one exclusion, which the server does not know until it is sent.
    /// @param map, gametype  display names, or Exclusion::anyMap() and Exclusion::anyGametype().
    void addExclusion(const QString &map, const QString &gametype);
    /// Removes the selected exclusions, here alone.
    void deleteSelection();
    /// All exclusions in the order of their table.
    QList<Exclusion> exclusions() const { return exclusionListController.arrangedObjects(); }
    /// Whether exclusions differ from what the session knows of the server.
    bool hasUnsentExclusions() const { return m_hasUnsentExclusions; }

    /// The last of the selected playlists.
    std::optional<PlaylistInst> selectedPlaylist() const;
    /// The playlist that the server runs; nothing when it is unknown.
    std::optional<PlaylistInst> currentPlaylist() const { return m_currentPlaylist; }

    ArrayController<PlaylistInst> playlistList;
    ArrayController<PlaylistGametypeInst> gametypeList;
    ArrayController<Exclusion> exclusionListController;

signals:
    void currentPlaylistChanged();
    void hasUnsentExclusionsChanged(bool hasUnsentExclusions);

private:
    void forgetServer();
    void showExclusions(QList<Exclusion> exclusions);
    QList<Exclusion> serverExclusions() const;
    std::optional<PlaylistInst> findCurrentPlaylist() const;
    void setCurrentPlaylist(const std::optional<PlaylistInst> &playlist);
    void exclusionsDidChange();

    KelServer &m_server;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    Alerts &m_alerts;
    QString m_resources;
    std::optional<PlaylistInst> m_currentPlaylist;
    QStringList m_sentExclusions; ///< their texts, sorted
    bool m_hasUnsentExclusions = false;
    int m_lastNumber = 0; ///< of an exclusion
    SharedInstance<KelPlaylists> m_shared{this};
};
