#pragma once

#include <QStringView>

#include <span>
#include <string_view>

/// The maps, gametypes, playlists and player names that the simulated server knows. All of them are invented.

struct DemoMap {
    const char *name;            ///< as in "map" commands and rotations
    const char *excludeVariable; ///< takes the map out of ranked play when it is not "0"
};

struct DemoGametype {
    const char *name;       ///< value of g_gametype
    bool isTeamGame;        ///< two teams, and the sum of a team's points decides
    int points;             ///< for one success of a player
    const char *scoreLimit; ///< default of its score limit
    const char *timeLimit;  ///< default of its time limit, in minutes
};

struct DemoPlaylist {
    int id;
    std::string_view gametypes; ///< names separated by single blanks
};

std::span<const DemoMap> demoMaps();
std::span<const DemoGametype> demoGametypes();
std::span<const DemoPlaylist> demoPlaylists();

/// Null when the server has no such gametype.
const DemoGametype *findDemoGametype(QStringView name);
bool isDemoMap(QStringView name);

/// Names of players in UTF-8, with blanks and colour codes as players like them; none leaves Latin-1.
std::span<const char *const> demoNames();
