#include "ExclusionText.h"

#include <QStringList>

static QString serverName(const QString &own, const QString &shown, const QHash<QString, QString> &dvarNames)
{
    return own.isEmpty() ? dvarNames.value(shown) : own;
}

ExclusionText exclusionText(const QList<Exclusion> &exclusions, const QHash<QString, QString> &mapDvarNames,
                            const QHash<QString, QString> &gametypeDvarNames)
{
    QStringList maps;
    QStringList gametypes;
    QStringList pairs;
    for (const Exclusion &exclusion : exclusions) {
        const bool isAnyMap = exclusion.map_dvar == Exclusion::anyMap();
        const bool isAnyGametype = exclusion.gametype == Exclusion::anyGametype();
        const QString map = serverName(exclusion.serverMap, exclusion.map_dvar, mapDvarNames);
        const QString gametype = serverName(exclusion.serverGametype, exclusion.gametype, gametypeDvarNames);
        const bool isFound = (isAnyMap || !map.isEmpty()) && (isAnyGametype || !gametype.isEmpty());
        if (!isFound || (isAnyMap && isAnyGametype))
            continue;
        if (isAnyMap)
            gametypes.append(gametype);
        else if (isAnyGametype)
            maps.append(map);
        else
            pairs.append({gametype, map});
    }
    const QString blank = QStringLiteral(" ");
    return {maps.join(blank).trimmed(), gametypes.join(blank).trimmed(), pairs.join(blank).trimmed()};
}
