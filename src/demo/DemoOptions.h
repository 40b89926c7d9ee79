#pragma once

#include "DemoFaults.h"

#include <QString>

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
    DemoFaults faults{};
};
