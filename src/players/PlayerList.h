#pragma once

#include <QList>
#include <QString>

/// One player as the server lists him. All texts are the server's, except that the identifier is in plain decimal form.
struct PlayerRow {
    QString identifier; ///< client number, used in commands
    QString name;
    QString guid;
    QString ipaddress; ///< with its port
    QString team;
    QString score;
    QString ping; ///< milliseconds, or the server's word for a player who is still connecting

    bool operator==(const PlayerRow &) const = default;
};

/// By this a player is recognised from one refresh to the next.
QString playerKey(const PlayerRow &player);

/// A game server has some dozens at most; what lists more is none.
inline constexpr qsizetype mostPlayers = 10'000;

/// What a teamstatus reply tells.
struct PlayerList {
    QList<PlayerRow> players;
    bool isTitled = false;  ///< a line names the columns; a server that sends it once sends it always
    bool isDamaged = false; ///< a piece of a row was left out: somebody may be missing
};

/// Reads a teamstatus reply. Whatever is no player line is skipped, and so is the server's recording client, and what
/// comes after mostPlayers.
PlayerList parsePlayerList(const QString &reply);
