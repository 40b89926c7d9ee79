#include "Fuzzing.h"
#include "ReadyCatalogues.h"

#include "Exclusion.h"
#include "KelPlaylists.h"

/// Other white space belongs to its word, but not at the ends.
static QStringList wordsOf(const QString &text)
{
    return text.trimmed().split(u' ', Qt::SkipEmptyParts);
}

/// What the server says of its exclusions is what it is told of them again.
static void checkText(const QList<Exclusion> &exclusions, const QStringList &replies)
{
    QHash<QString, QString> names;
    for (const Exclusion &exclusion : exclusions) {
        require(!exclusion.map_dvar.isEmpty() && !exclusion.gametype.isEmpty(), "an exclusion has two names");
        names.insert(exclusion.map_dvar, exclusion.map_dvar);
        names.insert(exclusion.gametype, exclusion.gametype);
    }
    const ExclusionText text = exclusionText(exclusions, names, names);
    QStringList pairs = replies.at(2).split(u' ', Qt::SkipEmptyParts);
    pairs.resize(pairs.size() / 2 * 2);
    require(wordsOf(text.maps) == wordsOf(replies.at(0)), "excluded maps are told again");
    require(wordsOf(text.gametypes) == wordsOf(replies.at(1)), "excluded gametypes are told again");
    require(wordsOf(text.pairs) == wordsOf(pairs.join(u' ')), "excluded pairs are told again");
}

/// The values of the three variables of a playlist's exclusions, and of "playlist".
static void fuzz(const QByteArray &bytes)
{
    static ReadyCatalogues session;
    static KelPlaylists playlists{session.server, session.gametypes, session.maps, session.alerts, {}};
    QStringList replies = repliesIn(bytes, 4);
    const QStringList dvars{"playlist_excludeMap", "playlist_excludeGametype", "playlist_excludeGametypeMap",
                            "playlist"};
    for (qsizetype i = 0; i < dvars.size(); ++i) {
        QString &value = replies[i];
        value.remove(u'"').remove(u'\n'); // which end a value, and a line
        if (value.isEmpty())
            value = " ";
        session.server.addDvarLine(QStringLiteral("%1 \"%2\"").arg(dvars.at(i), value));
    }
    playlists.updateControls();
    require(!playlists.hasUnsentExclusions(), "what the server says is no change");
    require(!playlists.currentPlaylist(), "a playlist that is not listed does not run");
    checkText(playlists.exclusions(), replies);
}
