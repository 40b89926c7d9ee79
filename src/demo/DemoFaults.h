#pragma once

#include <chrono>

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
