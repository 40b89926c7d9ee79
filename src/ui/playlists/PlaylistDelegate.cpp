#include "PlaylistDelegate.h"

#include "KelPlaylists.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

static constexpr int nameColumn = 1;

PlaylistDelegate::PlaylistDelegate(KelPlaylists &playlists, QObject *parent)
    : QStyledItemDelegate(parent), m_playlists(playlists)
{
}

void PlaylistDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
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

bool PlaylistDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                 const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    constexpr int longestShown = 500;
    const QString text = index.data().toString().left(longestShown);
    // Escaped, or a text with brackets would be taken for rich text; the tags let it wrap.
    const bool isCut = sizeHint(option, index).width() > option.rect.width();
    QToolTip::showText(event->globalPos(),
                       isCut ? QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped()) : QString(), view);
    return true;
}
