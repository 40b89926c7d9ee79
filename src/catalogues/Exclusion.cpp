#include "Exclusion.h"

#include "QuotedStrings.h"

#include <QStringList>

/// Of one text. A game server holds a few thousand at most; what sends more is none.
static constexpr qsizetype mostWords = 100000;

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

static QStringList wordsOf(const QString &value)
{
    const QString text = withoutOuterQuotes(value);
    QStringList words;
    for (const QStringView word : QStringView(text).tokenize(u' ', Qt::SkipEmptyParts)) {
        if (words.size() == mostWords)
            break;
        words.append(word.toString());
    }
    return words;
}

QList<Exclusion> exclusionsOf(const ExclusionText &text, const std::function<QString(const QString &)> &findMap,
                              const std::function<QString(const QString &)> &findGametype)
{
    QList<Exclusion> exclusions;
    for (const QString &map : wordsOf(text.maps))
        exclusions.append({findMap(map), Exclusion::anyGametype(), 0, map, {}});
    for (const QString &gametype : wordsOf(text.gametypes))
        exclusions.append({Exclusion::anyMap(), findGametype(gametype), 0, {}, gametype});
    const QStringList pairs = wordsOf(text.pairs);
    for (qsizetype i = 1; i < pairs.size(); i += 2) {
        const QString &gametype = pairs.at(i - 1);
        const QString &map = pairs.at(i);
        exclusions.append({findMap(map), findGametype(gametype), 0, map, gametype});
    }
    return exclusions;
}
