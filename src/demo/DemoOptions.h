#pragma once

#include <QString>

#include <chrono>
#include <optional>

/// What goes wrong between a client and the simulated server, on the way or because the server ignores haste.
/// Probabilities run from 0 to 1.
struct DemoFaults {
    double loss = 0;                       ///< a datagram gets lost, a request as well as each part of a reply
    double duplication = 0;                ///< a datagram of a reply comes twice
    double garbage = 0;                    ///< a malformed datagram comes instead of the reply
    bool silent = false;                   ///< nothing is answered and nothing is carried out
    bool reorder = false;                  ///< the datagrams of a longer reply come in another order
    bool otherPort = false;                ///< replies come from another port than the one that was asked
    bool stranger = false;                 ///< before each reply another address sends a false one
    int silentAfter = 0;                   ///< only so many datagrams of a reply are sent; 0 sends all
    std::chrono::milliseconds delay{0};    ///< how much later every datagram of a reply comes
    std::chrono::milliseconds gap{0};      ///< what passes between two datagrams of a reply
    std::chrono::milliseconds throttle{0}; ///< requests that come sooner after the last answered one are ignored
    int lockout = 0; ///< more requests within 30 s, and the client is ignored for 180 s; 0 ignores nobody
};

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
