#include "PlaylistDelegate.h"

#include "KelPlaylists.h"

static constexpr int nameColumn = 1;

PlaylistDelegate::PlaylistDelegate(KelPlaylists &playlists, QObject *parent)
    : CutTextDelegate(parent), m_playlists(playlists)
{
}

void PlaylistDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    CutTextDelegate::initStyleOption(option, index);
    const std::optional<PlaylistInst> current = m_playlists.currentPlaylist();
    const QModelIndex row = m_playlists.playlistList.arranged()->mapToSource(index);
    if (!current || !row.isValid() || m_playlists.playlistList.content().at(row.row()) != *current)
        return;
    if (index.column() > nameColumn) // bold would only make long texts longer
        return;
    option->font.setBold(true);
    option->fontMetrics = QFontMetrics(option->font);
    if (index.column() == nameColumn)
        option->text = tr("%1 (current)").arg(option->text);
}
