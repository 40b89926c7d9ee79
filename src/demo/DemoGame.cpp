#include "DemoGame.h"

#include <algorithm>

namespace
{
constexpr qint64 RoundCheckMilliseconds = 1000;

DemoVariables setUp(const DemoOptions &options, int capacity)
{
    DemoVariables variables;
    variables.assign(QStringLiteral("rcon_password"), options.password);
    variables.assign(QStringLiteral("sv_ranked"), options.ranked ? QStringLiteral("2") : QStringLiteral("0"));
    variables.assign(QStringLiteral("door_places"), QString::number(capacity));
    if (options.playlists) {
        variables.assign(QStringLiteral("playlist_enabled"), QStringLiteral("1"));
        variables.assign(QStringLiteral("playlist"), QStringLiteral("7"));
    }
    if (options.sparse)
        variables.hideAllButFew();
    return variables;
}
} // namespace

DemoGame::DemoGame(const DemoOptions &options)
    : m_random(options.seed), m_players(std::clamp(options.players, 0, DemoOptions::MaximumPlayers), m_random),
      m_hasDumpCount(options.dumpCount)
{
    m_variables = setUp(options, m_players.capacity());
    // There is no client yet that the console could answer.
    [[maybe_unused]] const QString printed = playNextMatch();
    m_players.catchUp(*m_gametype, m_random);
}

void DemoGame::advance(std::chrono::milliseconds time)
{
    m_rest += time.count();
    while (m_rest >= DemoPlayers::StepMilliseconds) {
        m_rest -= DemoPlayers::StepMilliseconds;
        m_now += DemoPlayers::StepMilliseconds;
        m_players.step(m_now, *m_gametype, m_random);
        if (m_now % RoundCheckMilliseconds == 0 && isRoundOver()) {
            // The round ended by itself, so no client gets the answer of the console.
            [[maybe_unused]] const QString printed = playNextMatch();
        }
    }
}

bool DemoGame::isRoundOver() const
{
    const QString stem = QStringLiteral("rule_%1_").arg(QLatin1StringView(m_gametype->name));
    const int scoreLimit = m_variables.value(stem + QStringLiteral("points")).toInt();
    const double timeLimit = m_variables.value(stem + QStringLiteral("minutes")).toDouble() * 60'000;
    return (scoreLimit > 0 && m_players.leadingScore() >= scoreLimit) ||
           (timeLimit > 0 && static_cast<double>(m_now - m_roundBegan) >= timeLimit);
}

void DemoGame::startRound()
{
    m_roundBegan = m_now;
    m_players.startRound(m_gametype->isTeamGame);
}

QString DemoGame::startMatch(const DemoMatch &match)
{
    if (findDemoGametype(match.gametype))
        m_variables.assign(QStringLiteral("g_gametype"), match.gametype);
    m_variables.assign(QStringLiteral("mapname"), match.map);
    m_variables.bringIntoForce();
    m_gametype = findDemoGametype(m_variables.inForce(QStringLiteral("g_gametype")));
    Q_ASSERT(m_gametype); // the variable takes no other value
    startRound();
    return QStringLiteral("Loading map %1 with gametype %2\n").arg(match.map, QLatin1StringView(m_gametype->name));
}

QString DemoGame::playNextMatch()
{
    if (m_variables.value(QStringLiteral("playlist_enabled")) == u"1") {
        if (const auto match = pickPlaylistMatch(m_variables, m_random))
            return startMatch(*match);
        return QStringLiteral("Everything that the playlist offers is excluded; the map starts anew.\n") +
               startMatch({{}, m_variables.value(QStringLiteral("mapname"))});
    }
    const QString currentName = QStringLiteral("sv_mapRotationCurrent");
    QString notes;
    QString rest = m_variables.value(currentName);
    // At most once through what is left of the rotation, and once through the whole of it.
    for (int round = 0; round < 2; ++round) {
        while (const auto match = takeNextMatch(rest)) {
            if (isDemoMap(match->map)) {
                m_variables.assign(currentName, rest);
                return notes + startMatch(*match);
            }
            if (notes.size() < 2000)
                notes += QStringLiteral("Map %1 is not on this server.\n").arg(match->map.left(64));
        }
        rest = m_variables.value(QStringLiteral("sv_mapRotation"));
    }
    m_variables.assign(currentName, {});
    return notes + QStringLiteral("The rotation names no map to play; the map starts anew.\n") +
           startMatch({{}, m_variables.value(QStringLiteral("mapname"))});
}
