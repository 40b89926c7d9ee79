#include "DemoGame.h"

#include "DemoWords.h"

#include <algorithm>
#include <array>

namespace
{
constexpr qint64 KickedFor = 60'000;

QString usage(const QString &form)
{
    return QStringLiteral("Usage: %1\n").arg(form);
}

QString notActive(const QString &client)
{
    return QStringLiteral("Client %1 is not active\n").arg(client);
}

/// @return -1 when the text is no number of a client.
int clientNumber(const QString &text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= 0 ? number : -1;
}
} // namespace

std::span<const DemoGame::Command> DemoGame::commands()
{
    static constexpr auto Commands = std::to_array<Command>({
        {"banclient", &DemoGame::removeClient},
        {"clientkick", &DemoGame::removeClient},
        {"commands", &DemoGame::listCommands},
        {"dvardump", &DemoGame::dumpVariables},
        {"fast_restart", &DemoGame::fastRestart},
        {"kick", &DemoGame::kickAll},
        {"map", &DemoGame::loadMap},
        {"map_restart", &DemoGame::restartMap},
        {"map_rotate", &DemoGame::rotateMap},
        {"say", &DemoGame::say},
        {"set", &DemoGame::setVariable},
        {"setadmindvar", &DemoGame::setVariable},
        {"status", &DemoGame::showStatus},
        {"teamstatus", &DemoGame::showTeamStatus},
        {"tell", &DemoGame::tell},
        {"tempbanclient", &DemoGame::removeClient},
    });
    return Commands;
}

QString DemoGame::execute(const QString &command)
{
    if (command.size() > MaximumCommandLength)
        return QStringLiteral("The command is too long.\n");
    const QStringList words = demoWords(command);
    if (words.isEmpty())
        return {};
    const QString &name = words.first();
    const auto known = commands();
    const auto found = std::find_if(known.begin(), known.end(), [&name](const Command &candidate) {
        return name.compare(QLatin1StringView(candidate.name), Qt::CaseInsensitive) == 0;
    });
    if (found != known.end())
        return (this->*found->run)(words);
    if (!m_variables.contains(name))
        return QStringLiteral("Unknown command \"%1\"\n").arg(name);
    return words.size() == 1 ? m_variables.description(name) : write(name, words.mid(1).join(u' '));
}

QString DemoGame::listCommands(const QStringList &)
{
    QString text;
    for (const Command &command : commands())
        text += QString::fromLatin1(command.name) + u'\n';
    return text + QStringLiteral("The name of a variable shows it; with a value behind it, it sets it.\n");
}

QString DemoGame::dumpVariables(const QStringList &)
{
    return m_variables.dump(m_hasDumpCount);
}

QString DemoGame::setVariable(const QStringList &words)
{
    if (words.size() < 2)
        return usage(QStringLiteral("setadmindvar <name> \"<value>\""));
    return write(words.at(1), words.mid(2).join(u' '));
}

QString DemoGame::write(const QString &name, const QString &value)
{
    switch (m_variables.write(name, value)) {
    case DemoVariables::Outcome::Written:
        return {};
    case DemoVariables::Outcome::Unknown:
        return QStringLiteral("There is no variable '%1'\n").arg(name);
    case DemoVariables::Outcome::ReadOnly:
        return QStringLiteral("The variable '%1' cannot be written\n").arg(name);
    case DemoVariables::Outcome::TooLong:
        return QStringLiteral("The value is too long for '%1'\n").arg(name);
    case DemoVariables::Outcome::NotValid:
        break;
    }
    return QStringLiteral("\"%1\" is not a valid value for '%2'\n").arg(value, name) + m_variables.domain(name);
}

QString DemoGame::showTeamStatus(const QStringList &)
{
    return m_players.teamStatus();
}

QString DemoGame::showStatus(const QStringList &)
{
    return QStringLiteral("server: %1\nmap: %2\ngametype: %3\nplayers: %4 of %5\n\n")
               .arg(variable(QStringLiteral("sv_hostname")), variable(QStringLiteral("mapname")),
                    QLatin1StringView(m_gametype->name), QString::number(m_players.count()),
                    QString::number(m_players.capacity())) +
           m_players.teamStatus();
}

/// Kicks a player or bans him, for ever or for a while.
QString DemoGame::removeClient(const QStringList &words)
{
    const QString command = words.first().toLower();
    if (words.size() < 2)
        return usage(QStringLiteral("%1 <client number>").arg(command));
    const int number = clientNumber(words.at(1));
    if (!m_players.isActive(number))
        return notActive(words.at(1));
    QString outcome = QStringLiteral("%1^7 was kicked\n");
    qint64 mayReturnAt = m_now + KickedFor;
    if (command == u"banclient") {
        outcome = QStringLiteral("%1^7 was banned\n");
        mayReturnAt = DemoPlayers::Never;
    } else if (command == u"tempbanclient") {
        outcome = QStringLiteral("%1^7 was banned for a while\n");
        mayReturnAt = m_now + variable(QStringLiteral("guard_awayTime")).toLongLong() * 1000;
    }
    outcome = outcome.arg(m_players.nameOf(number));
    m_players.remove(number, mayReturnAt);
    return outcome;
}

QString DemoGame::kickAll(const QStringList &words)
{
    if (words.value(1).compare(u"all", Qt::CaseInsensitive) != 0)
        return usage(QStringLiteral("kick all"));
    const int count = m_players.count();
    m_players.remove(DemoPlayers::Everybody, m_now + KickedFor);
    return QStringLiteral("%1 players were kicked\n").arg(count);
}

QString DemoGame::tell(const QStringList &words)
{
    if (words.size() < 3)
        return usage(QStringLiteral("tell <client number> <text>"));
    const int number = clientNumber(words.at(1));
    if (!m_players.isActive(number))
        return notActive(words.at(1));
    return QStringLiteral("tower to %1^7: %2\n").arg(m_players.nameOf(number), words.mid(2).join(u' '));
}

QString DemoGame::say(const QStringList &words)
{
    return QStringLiteral("tower: %1\n").arg(words.mid(1).join(u' '));
}

QString DemoGame::loadMap(const QStringList &words)
{
    if (words.size() < 2)
        return usage(QStringLiteral("map <map name>"));
    if (!isDemoMap(words.at(1)))
        return QStringLiteral("There is no map %1\n").arg(words.at(1));
    return startMatch({{}, words.at(1)});
}

QString DemoGame::restartMap(const QStringList &)
{
    return startMatch({{}, variable(QStringLiteral("mapname"))});
}

QString DemoGame::fastRestart(const QStringList &)
{
    startRound();
    return {};
}

QString DemoGame::rotateMap(const QStringList &)
{
    return playNextMatch();
}
