#pragma once

#include "CutTextDelegate.h"

class KelPlaylists;

/// Draws the table of playlists and marks the current one by a word.
class PlaylistDelegate : public CutTextDelegate
{
    Q_OBJECT
public:
    /// `playlists` outlives the delegate; its arranged rows are the table's.
    explicit PlaylistDelegate(KelPlaylists &playlists, QObject *parent = nullptr);

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

private:
    KelPlaylists &m_playlists;
};
