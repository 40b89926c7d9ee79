#pragma once

#include "DemoOptions.h"
#include "DemoPlayers.h"
#include "DemoRandom.h"
#include "DemoRotation.h"
#include "DemoVariables.h"

#include <QStringList>

#include <chrono>
#include <span>

/// The simulated game and the console of its server. Pure and deterministic: the same options and the same calls give
/// the same texts, everywhere. Not safe for use from several threads at once.
class DemoGame
{
public:
    static constexpr int MaximumCommandLength = 16'384;

    explicit DemoGame(const DemoOptions &options);

    /// Carries out one console line.
    /// @return what the console prints; empty for a command that prints nothing.
    QString execute(const QString &command);

    /// Lets time pass. Only whole quarters of a second count; a rest is kept for the next call.
    void advance(std::chrono::milliseconds time);

    QString password() const { return m_variables.value(QStringLiteral("rcon_password")); }
    /// The value as last written; empty for an unknown name.
    QString variable(const QString &name) const
    {
        return m_variables.contains(name) ? m_variables.value(name) : QString();
    }
    /// Without the recording client.
    int playerCount() const { return m_players.count(); }

private:
    struct Command {
        const char *name;
        QString (DemoGame::*run)(const QStringList &words);
    };
    static std::span<const Command> commands();

    QString dumpVariables(const QStringList &words);
    QString setVariable(const QStringList &words);
    QString write(const QString &name, const QString &value);

    QString showTeamStatus(const QStringList &words);
    QString showStatus(const QStringList &words);
    QString listCommands(const QStringList &words);
    QString removeClient(const QStringList &words);
    QString kickAll(const QStringList &words);
    QString tell(const QStringList &words);
    QString say(const QStringList &words);

    QString loadMap(const QStringList &words);
    QString restartMap(const QStringList &words);
    QString fastRestart(const QStringList &words);
    QString rotateMap(const QStringList &words);
    QString playNextMatch();
    QString startMatch(const DemoMatch &match);
    void startRound();

    bool isRoundOver() const;

    DemoRandom m_random;
    DemoVariables m_variables;
    DemoPlayers m_players;
    const DemoGametype *m_gametype = nullptr; ///< never null once constructed
    qint64 m_now = 0;                         ///< milliseconds of game time
    qint64 m_roundBegan = 0;
    qint64 m_rest = 0; ///< milliseconds that make no whole step yet
    bool m_hasDumpCount;
};
