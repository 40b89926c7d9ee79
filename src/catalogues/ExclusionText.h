#pragma once

#include "Exclusion.h"

#include <QHash>
#include <QList>
#include <QString>

/// What the server is told of the exclusions: its own names, separated by single blanks.
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
