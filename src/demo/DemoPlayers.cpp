#include "DemoPlayers.h"

#include <algorithm>

namespace
{
constexpr qint64 MinimumAbsence = 45'000; // a player who leaves stays away for this long
constexpr int StepsInASecond = 1000 / DemoPlayers::StepMilliseconds;

QString withoutColours(const QString &name)
{
    QString plain;
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name.at(i) == u'^' && i + 1 < name.size() && name.at(i + 1).isDigit())
            ++i;
        else
            plain += name.at(i);
    }
    return plain;
}

QString statusLine(int number, int score, int ping, const QString &guid, const QString &name, const QString &team,
                   int lastMessage, const QString &address, int qport, int rate)
{
    const auto right = [](int value, int width) -> QString {
        return QString::number(value).rightJustified(width) + u' ';
    };
    const auto left = [](const QString &text, int width) -> QString {
        return text.leftJustified(width) + u' ';
    };
    return right(number, 3) + right(score, 5) + right(ping, 4) + left(guid, 10) +
           left(name + QStringLiteral("^7"), 22) + left(team, 9) + right(lastMessage, 7) + left(address, 21) +
           right(qport, 5) + QString::number(rate).rightJustified(5) + u'\n';
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
    static constexpr int Rates[] = {5000, 20000, 25000, 25000, 25000};
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
    person.qport = random.between(1, 65535);
    person.rate = Rates[random.below(5)];
    person.skill = random.between(1, 10);
    person.usualPing = random.oneIn(6) ? random.between(120, 220) : random.between(18, 90);
    return person;
}

QString DemoPlayers::teamName(Team team)
{
    switch (team) {
    case Team::Free:
        return QStringLiteral("free");
    case Team::Allies:
        return QStringLiteral("allies");
    case Team::Axis:
        return QStringLiteral("axis");
    case Team::Spectator:
        break;
    }
    return QStringLiteral("spectator");
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

int DemoPlayers::numberOf(const QString &name) const
{
    for (const Player &player : m_players) {
        if (withoutColours(m_persons[player.person].name).compare(name, Qt::CaseInsensitive) == 0)
            return player.number;
    }
    return -1;
}

DemoPlayers::Team DemoPlayers::smallerTeam() const
{
    const auto size = [this](Team team) {
        return std::count_if(m_players.begin(), m_players.end(),
                             [team](const Player &player) { return player.team == team; });
    };
    return size(Team::Axis) < size(Team::Allies) ? Team::Axis : Team::Allies;
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
    player.ping = m_persons[chosen].usualPing;
    player.lastMessage = random.below(StepMilliseconds);
    if (random.oneIn(14))
        player.team = Team::Spectator;
    else
        player.team = m_isTeamGame ? smallerTeam() : Team::Free;
    m_persons[chosen].isPlaying = true;
    m_players.insert(place, player);
}

void DemoPlayers::leave(std::size_t index, qint64 mayReturnAt)
{
    Person &person = m_persons[m_players[index].person];
    person.isPlaying = false;
    person.mayReturnAt = mayReturnAt;
    m_players.erase(m_players.begin() + static_cast<std::ptrdiff_t>(index));
}

void DemoPlayers::remove(int number, qint64 mayReturnAt)
{
    for (std::size_t i = 0; i < m_players.size(); ++i) {
        if (m_players[i].number == number)
            return leave(i, mayReturnAt);
    }
}

void DemoPlayers::removeAll(qint64 mayReturnAt)
{
    while (!m_players.empty())
        leave(m_players.size() - 1, mayReturnAt);
}

void DemoPlayers::startRound(bool isTeamGame)
{
    const bool isOtherKind = isTeamGame != m_isTeamGame;
    m_isTeamGame = isTeamGame;
    for (Player &player : m_players) {
        player.score = 0;
        if (isOtherKind && player.team != Team::Spectator)
            player.team = Team::Free;
    }
    if (!isOtherKind || !isTeamGame)
        return;
    for (Player &player : m_players) {
        if (player.team == Team::Free)
            player.team = smallerTeam();
    }
}

void DemoPlayers::catchUp(const DemoGametype &gametype, DemoRandom &random)
{
    for (Player &player : m_players) {
        if (player.team != Team::Spectator)
            player.score = gametype.points * random.between(0, 3 + m_persons[player.person].skill);
    }
}

void DemoPlayers::play(const DemoGametype &gametype, DemoRandom &random)
{
    for (Player &player : m_players) {
        const Person &person = m_persons[player.person];
        player.lastMessage = random.below(StepMilliseconds);
        if (player.team != Team::Spectator && random.below(60 * StepsInASecond) < person.skill)
            player.score += gametype.points;
        if (random.oneIn(StepsInASecond)) {
            const int pull = (person.usualPing - player.ping) / 4;
            player.ping = std::clamp(player.ping + pull + random.between(-4, 4), 5, 999);
        }
    }
}

void DemoPlayers::comeAndGo(qint64 now, DemoRandom &random)
{
    if (m_usualCount == 0)
        return;
    const int patience = count() > m_usualCount ? 90 : 420; // seconds that a player stays, on average
    for (std::size_t i = m_players.size(); i-- > 0;) {
        if (random.oneIn(patience * StepsInASecond))
            leave(i, now + MinimumAbsence);
    }
    const int pause = count() < m_usualCount ? 8 : 60; // seconds until the next one comes, on average
    if (count() < m_usualCount + 2 && random.oneIn(pause * StepsInASecond))
        letSomebodyIn(now, random);
}

void DemoPlayers::step(qint64 now, const DemoGametype &gametype, DemoRandom &random)
{
    play(gametype, random);
    comeAndGo(now, random);
}

int DemoPlayers::leadingScore() const
{
    int best = 0;
    int allies = 0;
    int axis = 0;
    for (const Player &player : m_players) {
        best = std::max(best, player.score);
        allies += player.team == Team::Allies ? player.score : 0;
        axis += player.team == Team::Axis ? player.score : 0;
    }
    return m_isTeamGame ? std::max(allies, axis) : best;
}

QString DemoPlayers::teamStatus() const
{
    QString text = QStringLiteral(
        "num score ping guid       name                   team      lastmsg address               qport rate\n"
        "--- ----- ---- ---------- ---------------------- --------- ------- --------------------- ----- -----\n");
    for (const Player &player : m_players) {
        const Person &person = m_persons[player.person];
        text += statusLine(player.number, player.score, player.ping, person.guid, person.name, teamName(player.team),
                           player.lastMessage, person.address, person.qport, person.rate);
    }
    // The server records every match; its recorder counts as a client of its own.
    text += statusLine(m_capacity, 0, 0, QStringLiteral("0"), QStringLiteral("democlient"), teamName(Team::Spectator),
                       0, QStringLiteral("127.0.0.1:0"), 0, 25000);
    return text;
}
