#pragma once

#include <QString>

/// One playlist: what the server chooses its matches from.
struct PlaylistInst {
    qint64 ID = 0; ///< the number the server knows it by; 0 when it has none
    QString name = QStringLiteral("");
    QString playlistDescription = QStringLiteral("");

    QString uniqueName() const { return QStringLiteral("%1 (id=%2)").arg(name, QString::number(ID)); }
    bool operator==(const PlaylistInst &) const = default;
};

/// One gametype that playlists are made of.
struct PlaylistGametypeInst {
    QString name = QStringLiteral(""); ///< as users know it
    QString dvar = QStringLiteral(""); ///< as the server knows it

    QString uniqueName() const { return QStringLiteral("%1 (%2)").arg(name, dvar); }
    bool operator==(const PlaylistGametypeInst &) const = default;
};
