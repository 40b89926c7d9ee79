#pragma once

#include "DemoFaults.h"

#include <QString>

#include <chrono>
#include <optional>

/// What decides over what is played.
enum class DemoMode { Unranked, Playlists, Ranked };

/// How a simulated server is set up. Equal options give equal games.
struct DemoOptions {
    static constexpr int MaximumPlayers = 1000;

    quint16 port = 0;                          ///< 0 takes any free port
    QString password = QStringLiteral("demo"); ///< Latin-1; an empty one switches remote control off
    bool ranked = false;
    bool playlists = false;
    int players = 12; ///< 0 to MaximumPlayers, others are brought into the range
    quint64 seed = 1;
    bool frozen = false;      ///< time stands still: nobody comes, goes or scores
    bool refusalText = false; ///< a wrong password is refused with a text, not with the short datagram
    bool sparse = false;      ///< of the variables of gametypes, maps and settings next to none is known
    bool dumpCount = true;    ///< the list of all variables ends with their number

    std::chrono::milliseconds restartAfter{0}; ///< after the start, and only once; 0 never
    std::chrono::milliseconds awayFor{3'000};  ///< how long the port is closed then
    std::optional<DemoMode> restartMode{};     ///< comes back with it; nothing keeps the one from before

    DemoFaults faults{};
};
