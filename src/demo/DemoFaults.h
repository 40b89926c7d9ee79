#pragma once

#include <chrono>

/// What goes wrong on the way between a client and the simulated server. Probabilities run from 0 to 1.
struct DemoFaults {
    double loss = 0;                    ///< a datagram gets lost, a request as well as each part of a reply
    double duplication = 0;             ///< a datagram of a reply comes twice
    double garbage = 0;                 ///< a malformed datagram comes instead of the reply
    bool silent = false;                ///< nothing is answered and nothing is carried out
    bool reorder = false;               ///< the datagrams of a longer reply come in another order
    bool otherPort = false;             ///< replies come from another port than the one that was asked
    int silentAfter = 0;                ///< only so many datagrams of a reply are sent; 0 sends all
    std::chrono::milliseconds delay{0}; ///< how much later every datagram of a reply comes
};
