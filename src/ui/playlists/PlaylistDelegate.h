#pragma once

#include <QStyledItemDelegate>

class KelPlaylists;

/// Draws the table of playlists: marks the current one by a word, and tells cut texts in full in a tooltip.
class PlaylistDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    /// `playlists` outlives the delegate; its arranged rows are the table's.
    explicit PlaylistDelegate(KelPlaylists &playlists, QObject *parent = nullptr);

    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    KelPlaylists &m_playlists;
};
