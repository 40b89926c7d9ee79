#include "Fuzzing.h"
#include "QuietAlerts.h"
#include "ReadyExchange.h"

#include "Exclusion.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelServer.h"

namespace
{

/// The playlists of a server, with no catalogue to look names up in.
struct Playlists {
    QuietAlerts alerts;
    ReadyExchange exchange;
    KelServer server{exchange, alerts};
    CatalogueReader reader{{}, alerts, [] {
                           }};
    KelGametype gametypes{server, reader};
    KelMapList maps{server, reader};
    KelPlaylists playlists{server, gametypes, maps, alerts, {}};
};

} // namespace

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
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Playlists fixture;
    QStringList replies = fuzzedReplies(data, size, 4);
    const QStringList dvars{QStringLiteral("playlist_excludeMap"), QStringLiteral("playlist_excludeGametype"),
                            QStringLiteral("playlist_excludeGametypeMap"), QStringLiteral("playlist")};
    for (qsizetype i = 0; i < dvars.size(); ++i) {
        QString &value = replies[i];
        value.remove(u'"');
        if (value.isEmpty())
            value = QStringLiteral(" ");
        fixture.server.addDvarLine(QStringLiteral("%1 \"%2\"").arg(dvars.at(i), value));
    }
    fixture.playlists.updateControls();
    require(!fixture.playlists.hasUnsentExclusions(), "what the server says is no change");
    require(!fixture.playlists.currentPlaylist(), "a playlist that is not listed does not run");
    checkText(fixture.playlists.exclusions(), replies);
    return 0;
}
