#pragma once

#include "PlaylistInst.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QList>

#include <optional>

/// What a playlist definition file holds: blocks of lines, each closed by a blank line. Any thread.
struct PlaylistFile {
    Q_DECLARE_TR_FUNCTIONS(PlaylistFile)
public:
    static constexpr qint64 MaximumSize = 8 * 1024 * 1024; ///< in bytes; longer files are refused

    QList<PlaylistInst> playlists;         ///< in the order of the file, without wager playlists
    QList<PlaylistGametypeInst> gametypes; ///< in the order of the file

    /// Lines that mean nothing are skipped, blocks without a name and the last one without its blank line left out.
    static PlaylistFile parse(QStringView text);
    /// The same of the bytes of a file.
    /// @param reason  receives what is wrong with them, in the user's language; must not be null.
    static std::optional<PlaylistFile> parse(const QByteArray &bytes, QString *reason);
    /// @param error  receives what is wrong with the file when nothing is returned; may be null.
    static std::optional<PlaylistFile> read(const QString &path, QString *error = nullptr);
};
