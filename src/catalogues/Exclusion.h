#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <functional>

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

/// What the server says and is told of the exclusions: its own names, separated by single blanks.
struct ExclusionText {
    QString maps = QStringLiteral("");
    QString gametypes = QStringLiteral("");
    QString pairs = QStringLiteral(""); ///< the gametype first, then its map

    bool operator==(const ExclusionText &) const = default;
};

/// Turns exclusions, in their order, into what is written to the server. What has come from the server goes back as it
/// came. One of any map and any gametype says nothing, and one with a name that cannot be found is left out. Any
/// thread.
/// @param mapDvarNames, gametypeDvarNames  display name to the server's name, for what was added here.
ExclusionText exclusionText(const QList<Exclusion> &exclusions, const QHash<QString, QString> &mapDvarNames,
                            const QHash<QString, QString> &gametypeDvarNames);

/// Reads what the server says, quotes around the texts or not. A gametype without a map after it is left out. Any
/// thread.
/// @param findMap, findGametype  turn the server's name into the display name.
QList<Exclusion> exclusionsOf(const ExclusionText &text, const std::function<QString(const QString &)> &findMap,
                              const std::function<QString(const QString &)> &findGametype);
