#pragma once

#include <QString>

#include <optional>

class DemoRandom;
class DemoVariables;

/// What is played on which map.
struct DemoMatch {
    QString gametype; ///< empty: as before
    QString map;
};

/// Takes the first match off a rotation of the form "gametype crews map ward_a map ward_b gametype docks map ward_c"; a
/// map name may stand without "map". Nothing is left in `rotation`, and nothing returned, when it names no map.
std::optional<DemoMatch> takeNextMatch(QString &rotation);

/// Chooses a match of the running playlist, excluded maps, gametypes and pairs left out, another map than
/// the current one where there is a choice. Nothing when everything is excluded.
std::optional<DemoMatch> pickPlaylistMatch(const DemoVariables &variables, DemoRandom &random);
