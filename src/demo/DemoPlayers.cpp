#include "DemoPlayers.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr qint64 MinimumAbsence = 45'000; // a player who leaves stays away for this long
constexpr int StepsInASecond = 1000 / DemoPlayers::StepMilliseconds;

/// One row of the list, its columns as wide as those of the title.
QString statusLine(int number, int score, int ping, const QString &guid, const QString &name, const QString &team,
                   const QString &address)
{
    const auto right = [](int value, int width) -> QString {
        return QString::number(value).rightJustified(width) + u' ';
    };
    const auto left = [](const QString &text, int width) -> QString {
        return text.leftJustified(width) + u' ';
    };
    return right(number, 3) + right(score, 5) + right(ping, 4) + left(guid, 10) +
           left(name + QStringLiteral("^7"), 22) + left(team, 9) + right(50, 7) + left(address, 21) +
           right(4000 + number, 5) + QStringLiteral("25000\n");
}
} // namespace

DemoPlayers::DemoPlayers(int count, DemoRandom &random) : m_usualCount(count), m_capacity(std::max(18, count + 4))
{
    const std::size_t known = std::max(demoNames().size(), static_cast<std::size_t>(count) * 2 + 8);
    m_persons.reserve(known);
    for (std::size_t i = 0; i < known; ++i)
        m_persons.push_back(inventPerson(i, random));
    for (int i = 0; i < count; ++i)
        letSomebodyIn(0, random);
}

DemoPlayers::Person DemoPlayers::inventPerson(std::size_t index, DemoRandom &random)
{
    static constexpr const char *Networks[] = {"192.0.2", "198.51.100", "203.0.113"}; // set aside for examples
    const auto names = demoNames();
    Person person;
    person.name = QString::fromUtf8(names[index % names.size()]);
    if (index >= names.size())
        person.name += u' ' + QString::number(index / names.size() + 1);
    // The factor has no divisor in common with 900,000, so that nobody shares a number: bans go by it.
    person.guid =
        QString::number(((index * 104'729) % 900'000 + 100'000) * 1000 + static_cast<std::size_t>(random.below(1000)));
    person.address = QStringLiteral("%1.%2:%3")
                         .arg(QLatin1StringView(Networks[random.below(3)]))
                         .arg(random.between(1, 254))
                         .arg(random.between(50000, 50999));
    return person;
}

QString DemoPlayers::teamName(Team team)
{
    switch (team) {
    case Team::Alone:
        return QStringLiteral("alone");
    case Team::Lamps:
        return QStringLiteral("lamps");
    case Team::Wardens:
        return QStringLiteral("wardens");
    case Team::Watcher:
        break;
    }
    return QStringLiteral("watcher");
}

const DemoPlayers::Player *DemoPlayers::find(int number) const
{
    const auto found = std::find_if(m_players.begin(), m_players.end(),
                                    [number](const Player &player) { return player.number == number; });
    return found == m_players.end() ? nullptr : &*found;
}

QString DemoPlayers::nameOf(int number) const
{
    const Player *player = find(number);
    return player ? m_persons[player->person].name : QString();
}

DemoPlayers::Team DemoPlayers::smallerTeam() const
{
    const auto size = [this](Team team) {
        return std::count_if(m_players.begin(), m_players.end(),
                             [team](const Player &player) { return player.team == team; });
    };
    return size(Team::Wardens) < size(Team::Lamps) ? Team::Wardens : Team::Lamps;
}

void DemoPlayers::letSomebodyIn(qint64 now, DemoRandom &random)
{
    std::vector<std::size_t> waiting;
    for (std::size_t i = 0; i < m_persons.size(); ++i) {
        if (!m_persons[i].isPlaying && m_persons[i].mayReturnAt <= now)
            waiting.push_back(i);
    }
    if (waiting.empty())
        return; // everybody who would come is banned or away
    const std::size_t chosen = waiting[static_cast<std::size_t>(random.below(static_cast<int>(waiting.size())))];
    // The lowest free number, as the players stand in the order of their numbers.
    auto place = m_players.begin();
    int number = 0;
    while (place != m_players.end() && place->number == number) {
        ++place;
        ++number;
    }
    Player player;
    player.number = number;
    player.person = chosen;
    player.ping = random.oneIn(6) ? random.between(120, 220) : random.between(18, 90);
    if (random.oneIn(14))
        player.team = Team::Watcher;
    else
        player.team = m_isTeamGame ? smallerTeam() : Team::Alone;
    m_persons[chosen].isPlaying = true;
    m_players.insert(place, player);
}

void DemoPlayers::remove(int number, qint64 mayReturnAt)
{
    std::erase_if(m_players, [&](const Player &player) {
        if (player.number != number && number != Everybody)
            return false;
        m_persons[player.person].isPlaying = false;
        m_persons[player.person].mayReturnAt = mayReturnAt;
        return true;
    });
}

void DemoPlayers::startRound(bool isTeamGame)
{
    const bool isOtherKind = std::exchange(m_isTeamGame, isTeamGame) != isTeamGame;
    for (Player &player : m_players) {
        player.score = 0;
        if (isOtherKind && player.team != Team::Watcher)
            player.team = Team::Alone;
    }
    for (Player &player : m_players) {
        if (isTeamGame && player.team == Team::Alone)
            player.team = smallerTeam();
    }
}

void DemoPlayers::catchUp(const DemoGametype &gametype, DemoRandom &random)
{
    for (Player &player : m_players) {
        if (player.team != Team::Watcher)
            player.score = gametype.points * random.between(0, 12);
    }
}

void DemoPlayers::step(qint64 now, const DemoGametype &gametype, DemoRandom &random)
{
    for (Player &player : m_players) {
        if (player.team != Team::Watcher && random.oneIn(10 * StepsInASecond))
            player.score += gametype.points;
        if (random.oneIn(StepsInASecond))
            player.ping = std::clamp(player.ping + random.between(-4, 4), 5, 250);
    }
    comeAndGo(now, random);
}

void DemoPlayers::comeAndGo(qint64 now, DemoRandom &random)
{
    if (m_usualCount == 0)
        return;
    const int patience = count() > m_usualCount ? 90 : 420; // seconds that a player stays, on average
    for (int number = 0; number < m_capacity; ++number) {
        if (random.oneIn(patience * StepsInASecond))
            remove(number, now + MinimumAbsence);
    }
    const int pause = count() < m_usualCount ? 8 : 60; // seconds until the next one comes, on average
    if (count() < m_usualCount + 2 && random.oneIn(pause * StepsInASecond))
        letSomebodyIn(now, random);
}

int DemoPlayers::leadingScore() const
{
    int best = 0;
    int lamps = 0;
    int wardens = 0;
    for (const Player &player : m_players) {
        best = std::max(best, player.score);
        lamps += player.team == Team::Lamps ? player.score : 0;
        wardens += player.team == Team::Wardens ? player.score : 0;
    }
    return m_isTeamGame ? std::max(lamps, wardens) : best;
}

QString DemoPlayers::teamStatus() const
{
    QString text = QStringLiteral(
        "num score ping guid       name                   team      lastmsg address               qport rate\n"
        "--- ----- ---- ---------- ---------------------- --------- ------- --------------------- ----- -----\n");
    for (const Player &player : m_players) {
        const Person &person = m_persons[player.person];
        text += statusLine(player.number, player.score, player.ping, person.guid, person.name, teamName(player.team),
                           person.address);
    }
    // The server records every match; its recorder counts as a client of its own.
    text += statusLine(m_capacity, 0, 0, QStringLiteral("0"), QStringLiteral("democlient"), teamName(Team::Watcher),
                       QStringLiteral("127.0.0.1:0"));
    return text;
}
