#include "Journey.h"

#include "ElidingField.h"
#include "FormMainView.h"
#include "Hands.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "PlaylistsView.h"

bool Journey::startAPlaylist()
{
    PlaylistsView &view = *window().playlistsView;
    Hands::showTab(*window().tabControlMain, &view);
    const QModelIndex chosen = view.playlistsTableView->model()->index(2, 1);
    const QString name = chosen.data().toString();
    const QString number = chosen.siblingAtColumn(0).data().toString();
    Hands::click(*view.playlistsTableView, chosen);
    Hands::click(view.startPlaylistButton);
    if (!expect(waitUntil([&] { return view.currentPlaylistField->text() == name; }) && waitUntilIdle(),
                QStringLiteral("the chosen playlist is the current one")))
        return false;
    return expect(!name.isEmpty() && m_playlistServer.variable(QStringLiteral("playlist")) == number,
                  QStringLiteral("the server plays the playlist"));
}

bool Journey::excludeAMap()
{
    PlaylistsView &view = *window().playlistsView;
    Hands::click(view.addExclusionButton);
    MapGametypePairWindowController &picker = *view.mapGametypePairWindowController;
    if (!waitForSheet(&picker))
        return false;
    Hands::choose(picker.mapsPopupButton, QStringLiteral("Paper Mill"));
    takePicture(QStringLiteral("exclusion"));
    Hands::click(picker.addButton);
    Hands::click(picker.closeButton);
    if (!expect(Hands::find(*view.exclusionsTableView, QStringLiteral("Paper Mill")).isValid() &&
                    !view.unsentExclusionsLabel->text().isEmpty(),
                QStringLiteral("the exclusion is listed as not sent")))
        return false;
    Hands::click(view.applyExclusionsButton);
    if (!expect(waitUntilIdle() && view.unsentExclusionsLabel->text().isEmpty(),
                QStringLiteral("the exclusions are applied")))
        return false;
    takePicture(QStringLiteral("playlists"));
    return expect(
        m_playlistServer.variable(QStringLiteral("playlist_excludeMap")).contains(QLatin1String("mp_papermill")),
        QStringLiteral("the server excludes the map"));
}
