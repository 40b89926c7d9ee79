#pragma once

#include "DemoContent.h"
#include "DemoRandom.h"

#include <QString>

#include <limits>
#include <vector>

/// The people who play on the simulated server: who is there, how they do, who may come back when.
/// Times are milliseconds of the game's own clock.
class DemoPlayers
{
public:
    static constexpr int Everybody = -1;
    static constexpr qint64 Never = std::numeric_limits<qint64>::max();
    static constexpr int StepMilliseconds = 250;

    /// Begins with `count` players of a team game; about as many it stays.
    DemoPlayers(int count, DemoRandom &random);

    int count() const { return static_cast<int>(m_players.size()); }
    /// The number of places; the recording client has the number behind the last one.
    int capacity() const { return m_capacity; }
    bool isActive(int number) const { return find(number) != nullptr; }
    /// With its colour codes; empty for a number that is not active.
    QString nameOf(int number) const;

    /// @param number  of a player, or Everybody.
    void remove(int number, qint64 mayReturnAt);

    /// Clears the scores and, where the kind of game asks for it, forms teams anew.
    void startRound(bool isTeamGame);
    /// Gives the players the scores of a round that has been running for a while.
    void catchUp(const DemoGametype &gametype, DemoRandom &random);
    /// Lets a quarter of a second pass.
    void step(qint64 now, const DemoGametype &gametype, DemoRandom &random);
    /// The score that the round's limit is compared with: the better team's, or the best player's.
    int leadingScore() const;

    /// A title, a line of dashes, and one line for each player and the recording client.
    QString teamStatus() const;

private:
    struct Person {
        QString name;
        QString guid;
        QString address;
        qint64 mayReturnAt = 0;
        bool isPlaying = false;
    };
    enum class Team { Alone, Lamps, Wardens, Watcher };
    struct Player {
        int number = 0;
        std::size_t person = 0;
        Team team = Team::Alone;
        int score = 0;
        int ping = 0;
    };

    static Person inventPerson(std::size_t index, DemoRandom &random);
    static QString teamName(Team team);
    const Player *find(int number) const;
    Team smallerTeam() const;
    void letSomebodyIn(qint64 now, DemoRandom &random);
    void comeAndGo(qint64 now, DemoRandom &random);

    std::vector<Person> m_persons;
    std::vector<Player> m_players; ///< by number
    int m_usualCount;
    int m_capacity;
    bool m_isTeamGame = true;
};
