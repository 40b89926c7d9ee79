#pragma once

#include <QString>

/// One gametype that playlists are made of.
struct PlaylistGametypeInst {
    QString name = QStringLiteral(""); ///< as users know it
    QString dvar = QStringLiteral(""); ///< as the server knows it

    QString uniqueName() const { return QStringLiteral("%1 (%2)").arg(name, dvar); }
    /// Orders by uniqueName(), capitals apart: below 0, 0, or above 0.
    int compare(const PlaylistGametypeInst &other) const { return uniqueName().compare(other.uniqueName()); }
    bool operator==(const PlaylistGametypeInst &) const = default;
};
