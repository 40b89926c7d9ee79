#include "PlayerCommands.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KelServer.h"

#include <QHash>

using namespace std::chrono_literals;

static constexpr std::chrono::seconds noRefresh{-1};

static bool isSpaceOrNewline(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\n');
}

static QString withoutOuterBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && isSpaceOrNewline(text.at(first)))
        ++first;
    while (end > first && isSpaceOrNewline(text.at(end - 1)))
        --end;
    return text.mid(first, end - first);
}

static QString failureLine(const QString &name, const QString &reason)
{
    return QStringLiteral("\n  %1 (%2)").arg(name, reason);
}

PlayerCommands::PlayerCommands(KelServer &server, ActionQueue &actions, Alerts &alerts, QObject *parent)
    : QObject(parent), m_server(server), m_actions(actions), m_alerts(alerts)
{
}

void PlayerCommands::kick(const QList<PlayerRow> &players)
{
    m_actions.start(command(QStringLiteral("clientkick"), players, {}, 5s));
}

void PlayerCommands::ban(const QList<PlayerRow> &players)
{
    m_actions.start(command(QStringLiteral("banclient"), players, {}, 5s));
}

void PlayerCommands::tempBan(const QList<PlayerRow> &players)
{
    // Sooner than after a kick: the administrator watches for the player's return.
    m_actions.start(command(QStringLiteral("tempbanclient"), players, {}, 1s));
}

void PlayerCommands::tell(const QList<PlayerRow> &recipients, const QList<PlayerRow> &present, const QString &message)
{
    QHash<QString, PlayerRow> presentByKey;
    for (const PlayerRow &player : present)
        presentByKey.insert(playerKey(player), player);
    QList<PlayerRow> chosen;
    QString failures;
    for (const PlayerRow &player : recipients) {
        const auto found = presentByKey.constFind(playerKey(player));
        if (found != presentByKey.constEnd())
            chosen.append(*found);
        else
            failures += failureLine(player.name, tr("has left the server"));
    }
    m_actions.start(command(QStringLiteral("tell"), std::move(chosen), message, noRefresh, failures));
}

void PlayerCommands::kickAll()
{
    m_actions.start(confirmAndKickAll());
}

QCoro::Task<> PlayerCommands::command(QString word, QList<PlayerRow> chosen, QString argument,
                                      std::chrono::seconds refreshAfter, QString failures)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    co_await sendCommandToSelectedPlayers(word, chosen, argument, failures);
    if (turn && refreshAfter != noRefresh)
        emit refreshWanted(refreshAfter);
}

QCoro::Task<> PlayerCommands::sendCommandToSelectedPlayers(QString word, QList<PlayerRow> chosen,
                                                           QString optionalArgument, QString failures)
{
    for (const PlayerRow &player : std::as_const(chosen)) {
        QString line = word + QLatin1Char(' ') + player.identifier;
        if (!optionalArgument.isEmpty())
            line += QLatin1Char(' ') + optionalArgument;
        const Reply reply = co_await m_server.sendCommand(line);
        if (reply.isCancelled)
            co_return;
        if (!reply.isSuccess() || reply.text.contains(QLatin1String("is not active")))
            failures += failureLine(player.name, withoutOuterBlanks(reply.text));
    }
    if (failures.isEmpty())
        co_return;
    const QString text = tr("The following player(s) failed to process the '%1' command: ").arg(word) + failures;
    co_await m_alerts.run(tr("Remote Command Failure"), text);
}

QCoro::Task<> PlayerCommands::confirmAndKickAll()
{
    // Its place in the queue counts from the press, but the question need not wait for those before it.
    QCoro::Task<ActionQueue::Turn> place = m_actions.turn();
    const QStringList buttons{tr("Yes"), tr("No")};
    const int pressed =
        co_await m_alerts.run(tr("Please Confirm Command"), tr("Do you really want to kick everyone?"), buttons);
    const ActionQueue::Turn turn = co_await place;
    if (!turn || pressed != 0)
        co_return;
    const QString line = QStringLiteral("kick all");
    const Reply reply = co_await m_server.sendCommand(line);
    if (reply.isCancelled)
        co_return;
    if (!reply.isSuccess()) {
        const QString text = tr("KickAll returned an error: %1").arg(reply.text);
        co_await m_alerts.run(tr("Remote Command Failure"), text);
    }
    if (turn)
        emit refreshWanted(5s);
}
