#include "ExclusionText.h"

#include <QStringList>

ExclusionText exclusionText(const QList<Exclusion> &exclusions, const QHash<QString, QString> &mapDvarNames,
                            const QHash<QString, QString> &gametypeDvarNames)
{
    QStringList maps;
    QStringList gametypes;
    QStringList pairs;
    for (const Exclusion &exclusion : exclusions) {
        const bool isAnyMap = exclusion.map_dvar == Exclusion::anyMap();
        const bool isAnyGametype = exclusion.gametype == Exclusion::anyGametype();
        const QString map = mapDvarNames.value(exclusion.map_dvar);
        const QString gametype = gametypeDvarNames.value(exclusion.gametype);
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
