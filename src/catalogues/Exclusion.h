#pragma once

#include <QString>

/// What a playlist leaves out: a map, a gametype, or the two of them together. Not translated: these are values.
struct Exclusion {
    QString map_dvar; ///< despite its name the map's display name, or anyMap()
    QString gametype; ///< the gametype's display name, or anyGametype()
    int number = 0;   ///< tells rows with equal texts apart
    /// The server's own names for the two, by which they go back to it; empty for "any" and for what was added here.
    QString serverMap{};
    QString serverGametype{};

    static QString anyMap() { return QStringLiteral("<any map>"); }
    static QString anyGametype() { return QStringLiteral("<any gametype>"); }

    bool operator==(const Exclusion &) const = default;
};
