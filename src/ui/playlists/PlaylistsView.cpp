#include "PlaylistsView.h"

#include "Alerts.h"
#include "DvarSettingList.h"
#include "ElidingField.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "PlaceholderTable.h"

#include <QKeyEvent>

#include <utility>

void PlaylistsView::startPlaylistButtonPressed()
{
    // Nothing selected means playlist 0.
    m_actions.start(startPlaylist(m_playlists.selectedPlaylist().value_or(PlaylistInst())));
}

QCoro::Task<> PlaylistsView::startPlaylist(PlaylistInst playlist)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const QString variable = QStringLiteral("playlist");
    const QString number = QString::number(playlist.ID);
    const Reply written = co_await m_server.setDvar(variable, number);
    if (!turn || written.isCancelled)
        co_return;
    if (!written.isSuccess())
        co_await tellOfFailure(variable, written.text);
    if (!turn)
        co_return;
    m_playlists.updateControls();
    // A failed write does not end this: the server may have taken the playlist although its answer was lost.
    if (m_server.isRanked()) {
        const QString text =
            tr("The \"%1\" playlist will begin as soon as the current map completes.").arg(playlist.name);
        co_await m_alerts.run(tr("Playlist Has Been Queued"), text);
        co_return;
    }
    const QString line = QStringLiteral("map_rotate");
    const Reply rotated = co_await m_server.sendCommand(line);
    if (turn && !rotated.isCancelled && !rotated.isSuccess())
        co_await tellOfFailure(line, rotated.text);
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
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    const QList<std::pair<QString, QString>> writes{{QStringLiteral("playlist_excludeMap"), texts.maps},
                                                    {QStringLiteral("playlist_excludeGametype"), texts.gametypes},
                                                    {QStringLiteral("playlist_excludeGametypeMap"), texts.pairs}};
    for (const std::pair<QString, QString> &write : writes) {
        const Reply reply = co_await m_server.setDvar(write.first, write.second);
        if (!turn || reply.isCancelled)
            co_return;
        if (!reply.isSuccess())
            co_await tellOfFailure(write.first, reply.text);
        if (!turn)
            co_return;
    }
    m_playlists.updateControls();
}

QCoro::Task<> PlaylistsView::tellOfFailure(QString command, QString error)
{
    const QString text = tr("'%1' returned an error: %2").arg(command, error);
    co_await m_alerts.run(tr("Remote Command Failure"), text);
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
        return QWidget::eventFilter(object, event);
    const auto *press = static_cast<QKeyEvent *>(event);
    const bool isReturn = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    if (object == playlistsTableView && isReturn && playlistsTableView->selectionModel()->hasSelection()) {
        if (!press->isAutoRepeat())
            startPlaylistButtonPressed();
        return true;
    }
    return QWidget::eventFilter(object, event);
}

void PlaylistsView::currentPlaylistDidChange()
{
    const std::optional<PlaylistInst> current = m_playlists.currentPlaylist();
    currentPlaylistField->showText(current ? current->name : QString());
    playlistsTableView->viewport()->update(); // the mark moves
}

void PlaylistsView::exclusionSelectionDidChange()
{
    const bool isAnySelected = m_playlists.exclusionListController.selection()->hasSelection();
    if (!isAnySelected && removeExclusionButton->hasFocus())
        exclusionsTableView->setFocus(); // else it would go on to the next button
    removeExclusionButton->setEnabled(isAnySelected);
}

void PlaylistsView::showUnsentExclusions(bool hasUnsent)
{
    unsentExclusionsLabel->setText(hasUnsent ? tr("Not yet applied. Starting a playlist discards these changes.")
                                             : QString());
}
