#include "DemoRotation.h"

#include "DemoContent.h"
#include "DemoRandom.h"
#include "DemoVariables.h"

#include <QStringList>

namespace
{
QStringList playlistGametypes(int id)
{
    for (const DemoPlaylist &playlist : demoPlaylists()) {
        if (playlist.id == id)
            return QString::fromLatin1(playlist.gametypes).split(u' ');
    }
    // A number without a playlist behind it plays everything.
    QStringList all;
    for (const DemoGametype &gametype : demoGametypes())
        all.append(QString::fromLatin1(gametype.name));
    return all;
}

QStringList wordsOf(const DemoVariables &variables, const QString &name)
{
    return variables.value(name).simplified().split(u' ', Qt::SkipEmptyParts);
}

QStringList playableMaps(const DemoVariables &variables)
{
    const QStringList excluded = wordsOf(variables, QStringLiteral("playlist_excludeMap"));
    const bool isRanked = variables.value(QStringLiteral("sv_ranked")) != u"0";
    QStringList maps;
    for (const DemoMap &map : demoMaps()) {
        const QString name = QString::fromLatin1(map.name);
        const bool isSwitchedOff = isRanked && variables.value(QString::fromLatin1(map.excludeVariable)) != u"0";
        if (!isSwitchedOff && !excluded.contains(name))
            maps.append(name);
    }
    return maps;
}
} // namespace

std::optional<DemoMatch> takeNextMatch(QString &rotation)
{
    QStringList words = rotation.simplified().split(u' ', Qt::SkipEmptyParts);
    rotation.clear();
    DemoMatch match;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (words.at(i) == u"gametype") {
            match.gametype = words.value(++i);
            continue;
        }
        match.map = words.at(i) == u"map" ? words.value(++i) : words.at(i);
        if (match.map.isEmpty())
            break;
        rotation = words.mid(i + 1).join(u' ');
        return match;
    }
    return std::nullopt;
}

std::optional<DemoMatch> pickPlaylistMatch(const DemoVariables &variables, DemoRandom &random)
{
    const QStringList excludedGametypes = wordsOf(variables, QStringLiteral("playlist_excludeGametype"));
    const QStringList excludedPairs = wordsOf(variables, QStringLiteral("playlist_excludeGametypeMap"));
    const QString currentMap = variables.value(QStringLiteral("mapname"));
    const auto isExcludedPair = [&excludedPairs](const QString &gametype, const QString &map) {
        for (qsizetype i = 0; i + 1 < excludedPairs.size(); i += 2) {
            if (excludedPairs.at(i) == gametype && excludedPairs.at(i + 1) == map)
                return true;
        }
        return false;
    };
    const QStringList maps = playableMaps(variables);
    QList<DemoMatch> matches;
    for (const QString &gametype : playlistGametypes(variables.value(QStringLiteral("playlist")).toInt())) {
        for (const QString &map : maps) {
            if (!excludedGametypes.contains(gametype) && !isExcludedPair(gametype, map))
                matches.append({gametype, map});
        }
    }
    QList<DemoMatch> elsewhere = matches;
    elsewhere.removeIf([&currentMap](const DemoMatch &match) { return match.map == currentMap; });
    const QList<DemoMatch> &choice = elsewhere.isEmpty() ? matches : elsewhere;
    if (choice.isEmpty())
        return std::nullopt;
    return choice.at(random.below(static_cast<int>(choice.size())));
}
