#include "KelPlaylists.h"

#include "Alerts.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "Number.h"
#include "PlaylistFile.h"

#include <QHash>

#include <algorithm>
#include <utility>

static QList<ArrayController<PlaylistInst>::Column> playlistColumns()
{
    return {{KelPlaylists::tr("ID"), [](const PlaylistInst &playlist) { return QString::number(playlist.ID); },
             [](const PlaylistInst &playlist) { return QVariant(playlist.ID); }, Qt::AlignRight | Qt::AlignVCenter},
            {KelPlaylists::tr("Name"), [](const PlaylistInst &playlist) { return playlist.name; }, nullptr},
            {KelPlaylists::tr("Description"), [](const PlaylistInst &playlist) { return playlist.playlistDescription; },
             nullptr}};
}

static QList<ArrayController<PlaylistGametypeInst>::Column> gametypeColumns()
{
    return {
        {KelPlaylists::tr("Gametype"), [](const PlaylistGametypeInst &gametype) { return gametype.name; }, nullptr}};
}

static QList<ArrayController<Exclusion>::Column> exclusionColumns()
{
    return {{KelPlaylists::tr("Map"), [](const Exclusion &exclusion) { return exclusion.map_dvar; }, nullptr},
            {KelPlaylists::tr("Gametype"), [](const Exclusion &exclusion) { return exclusion.gametype; }, nullptr}};
}

static QString textOf(const Exclusion &exclusion)
{
    return exclusion.map_dvar + QLatin1Char('\n') + exclusion.gametype;
}

static QStringList sortedTexts(const QList<Exclusion> &exclusions)
{
    QStringList texts;
    for (const Exclusion &exclusion : exclusions)
        texts.append(textOf(exclusion));
    texts.sort();
    return texts;
}

KelPlaylists::KelPlaylists(KelServer &server, KelGametype &gametypes, KelMapList &maps, Alerts &alerts,
                           const QString &resources, QObject *parent)
    : QObject(parent),
      playlistList(playlistColumns(), [](const PlaylistInst &playlist) { return playlist.uniqueName(); }),
      gametypeList(gametypeColumns(), [](const PlaylistGametypeInst &gametype) { return gametype.uniqueName(); }),
      exclusionListController(exclusionColumns(),
                              [](const Exclusion &exclusion) { return QString::number(exclusion.number); }),
      m_server(server), m_gametypes(gametypes), m_maps(maps), m_alerts(alerts), m_resources(resources)
{
    connect(&m_server, &KelServer::connectionBegan, this, &KelPlaylists::forgetServer);
    connect(&m_server, &KelServer::isConnectedChanged, this, &KelPlaylists::forgetServer);
}

QCoro::Task<> KelPlaylists::loadPlaylists()
{
    QString error;
    const std::optional<PlaylistFile> file =
        PlaylistFile::read(m_resources + QStringLiteral("/playlists_mp.info"), &error);
    playlistList.mergeContent(file ? file->playlists : QList<PlaylistInst>());
    gametypeList.mergeContent(file ? file->gametypes : QList<PlaylistGametypeInst>());
    if (!file)
        co_await m_alerts.run(tr("Playlists Not Loaded"), error);
}

void KelPlaylists::updateControls()
{
    showExclusions(serverExclusions());
    setCurrentPlaylist(findCurrentPlaylist());
}

void KelPlaylists::forgetServer()
{
    showExclusions({});
    setCurrentPlaylist({});
}

void KelPlaylists::showExclusions(QList<Exclusion> exclusions)
{
    // What stands there already keeps its number, and with it the selection.
    QHash<QString, QList<int>> numbers;
    for (const Exclusion &exclusion : exclusionListController.content())
        numbers[textOf(exclusion)].append(exclusion.number);
    for (Exclusion &exclusion : exclusions) {
        const auto found = numbers.find(textOf(exclusion));
        const bool isThere = found != numbers.end() && !found->isEmpty();
        exclusion.number = isThere ? found->takeFirst() : ++m_lastNumber;
    }
    exclusionListController.mergeContent(exclusions);
    m_sentExclusions = sortedTexts(exclusions);
    exclusionsDidChange();
}

QList<Exclusion> KelPlaylists::serverExclusions() const
{
    const QHash<QString, QString> dvars = m_server.dvarList();
    const ExclusionText text{dvars.value(QStringLiteral("playlist_excludeMap")),
                             dvars.value(QStringLiteral("playlist_excludeGametype")),
                             dvars.value(QStringLiteral("playlist_excludeGametypeMap"))};
    return exclusionsOf(
        text, [this](const QString &name) { return m_maps.findMapByDvar(name); },
        [this](const QString &name) { return m_gametypes.findGametypeByDvar(name); });
}

std::optional<PlaylistInst> KelPlaylists::findCurrentPlaylist() const
{
    const std::optional<qint64> number = parseNumber(m_server.dvarList().value(QStringLiteral("playlist")));
    const QList<PlaylistInst> playlists = playlistList.arrangedObjects();
    const auto found = std::find_if(playlists.begin(), playlists.end(),
                                    [number](const PlaylistInst &playlist) { return playlist.ID == number; });
    return found == playlists.end() ? std::nullopt : std::optional(*found);
}

void KelPlaylists::setCurrentPlaylist(const std::optional<PlaylistInst> &playlist)
{
    if (m_currentPlaylist == playlist)
        return;
    m_currentPlaylist = playlist;
    emit currentPlaylistChanged();
}

void KelPlaylists::addExclusion(const QString &map, const QString &gametype)
{
    exclusionListController.addObject(Exclusion{map, gametype, ++m_lastNumber});
    exclusionsDidChange();
}

void KelPlaylists::deleteSelection()
{
    exclusionListController.removeSelected();
    exclusionsDidChange();
}

void KelPlaylists::exclusionsDidChange()
{
    const bool hasUnsent = sortedTexts(exclusionListController.content()) != m_sentExclusions;
    if (hasUnsent == m_hasUnsentExclusions)
        return;
    m_hasUnsentExclusions = hasUnsent;
    emit hasUnsentExclusionsChanged(hasUnsent);
}

std::optional<PlaylistInst> KelPlaylists::selectedPlaylist() const
{
    const QList<PlaylistInst> selected = playlistList.selectedObjects();
    return selected.isEmpty() ? std::nullopt : std::optional(selected.last());
}
