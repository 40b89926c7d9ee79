#include "Journey.h"

#include "Controls.h"
#include "Hands.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>

bool Journey::startAPlaylist()
{
    const QWidget &playlists = showTab("playlistsView");
    auto &table = *control<QAbstractItemView>(playlists, "playlistsTableView");
    const QModelIndex chosen = table.model()->index(2, 1);
    const QString name = chosen.data().toString();
    const QString number = chosen.siblingAtColumn(0).data().toString();
    Hands::click(table, chosen);
    Hands::click(playlists, "startPlaylistButton");
    const auto &current = *control<QLineEdit>(playlists, "currentPlaylistField");
    if (!expect(waitUntil([&] { return current.text() == name; }) && waitUntilIdle(),
                QStringLiteral("the chosen playlist is the current one")))
        return false;
    return expect(!name.isEmpty() && m_playlistServer.variable(QStringLiteral("playlist")) == number,
                  QStringLiteral("the server plays the playlist"));
}

bool Journey::excludeAMap()
{
    const QWidget &playlists = page("playlistsView");
    Hands::click(playlists, "addExclusionButton");
    const QDialog *picker = waitForSheet(QStringLiteral("mapGametypePairPanel"));
    if (picker == nullptr)
        return false;
    Hands::choose(*picker, "mapsPopupButton", QStringLiteral("Paper Mill"));
    takePicture(QStringLiteral("exclusion"));
    Hands::click(*picker, "addButton");
    Hands::click(*picker, "closeButton");
    const auto &exclusions = *control<QAbstractItemView>(playlists, "exclusionsTableView");
    const auto &unsent = *control<QLabel>(playlists, "unsentExclusionsLabel");
    if (!expect(Hands::find(exclusions, QStringLiteral("Paper Mill")).isValid() && !unsent.text().isEmpty(),
                QStringLiteral("the exclusion is listed as not sent")))
        return false;
    Hands::click(playlists, "applyExclusionsButton");
    if (!expect(waitUntilIdle() && unsent.text().isEmpty(), QStringLiteral("the exclusions are applied")))
        return false;
    takePicture(QStringLiteral("playlists"));
    return expect(
        m_playlistServer.variable(QStringLiteral("playlist_excludeMap")).contains(QLatin1String("mp_papermill")),
        QStringLiteral("the server excludes the map"));
}
