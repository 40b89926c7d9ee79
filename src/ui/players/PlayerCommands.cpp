#include "PlayerCommands.h"

#include "Alerts.h"
#include "KelServer.h"
#include "ServerAction.h"

#include <utility>

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

static QStringList namesOf(const QList<ChosenPlayer> &players)
{
    QStringList names;
    for (const ChosenPlayer &player : players)
        names.append(player.row.name);
    return names;
}

static QStringList hiddenNames(const QList<ChosenPlayer> &players)
{
    QStringList names;
    for (const ChosenPlayer &player : players) {
        if (player.isHidden)
            names.append(player.row.name);
    }
    return names;
}

PlayerCommands::PlayerCommands(KelServer &server, PlayerRoster &roster, ActionQueue &actions, Alerts &alerts,
                               QObject *parent)
    : QObject(parent), m_server(server), m_roster(roster), m_actions(actions), m_alerts(alerts)
{
}

void PlayerCommands::kick(const QList<ChosenPlayer> &players)
{
    m_actions.start(command(tr("Kick"), QStringLiteral("clientkick"), players, {}, 5s));
}

void PlayerCommands::ban(const QList<ChosenPlayer> &players)
{
    m_actions.start(command(tr("Ban"), QStringLiteral("banclient"), players, {}, 5s));
}

void PlayerCommands::tempBan(const QList<ChosenPlayer> &players)
{
    // Sooner than after a kick: the administrator watches for the player's return.
    m_actions.start(command(tr("Temp Ban"), QStringLiteral("tempbanclient"), players, {}, 1s));
}

void PlayerCommands::tell(const QList<ChosenPlayer> &recipients, const QString &message)
{
    m_actions.start(command(tr("Message"), QStringLiteral("tell"), recipients, message, noRefresh));
}

void PlayerCommands::kickAll()
{
    m_actions.start(confirmAndKickAll());
}

QCoro::Task<> PlayerCommands::command(QString name, QString word, QList<ChosenPlayer> chosen, QString argument,
                                      std::chrono::seconds refreshAfter)
{
    // The action takes its place in the queue now; the question is asked without waiting for the actions before it.
    ServerAction action(m_server, m_actions, {.action = name, .targets = namesOf(chosen)});
    const QStringList hidden = hiddenNames(chosen);
    bool goesOn = !chosen.isEmpty();
    if (!hidden.isEmpty() && word != QLatin1String("tell")) // a message names its recipients while it is written
        goesOn = co_await mayHitHidden(word, hidden);
    co_await action.begin();
    if (!action || !goesOn)
        co_return;
    bool isCertain = m_roster.isNew();
    if (!isCertain)
        isCertain = co_await readListAgain(&action);
    if (!action || !isCertain)
        co_return;
    co_await sendCommandToSelectedPlayers(&action, word, chosen, argument);
    if (action && refreshAfter != noRefresh)
        emit refreshWanted(refreshAfter);
}

QCoro::Task<bool> PlayerCommands::mayHitHidden(QString word, QStringList hidden)
{
    const QString text = tr("These players are selected although the filter hides them: %1\n\nDo you want to send them "
                            "the '%2' command as well?")
                             .arg(hidden.join(QStringLiteral(", ")), word);
    const QStringList buttons{tr("Send to All Selected"), tr("Cancel")};
    const AlertManner manner{1, false};
    const int pressed = co_await m_alerts.run(tr("Hidden Players Are Selected"), text, buttons, manner);
    co_return pressed == 0;
}

QCoro::Task<bool> PlayerCommands::readListAgain(ServerAction *action)
{
    const PlayerRoster::Fetch fetch = co_await m_roster.fetch();
    if (!*action || fetch.outcome == PlayerRoster::Fetch::CalledOff)
        co_return false;
    if (fetch.outcome == PlayerRoster::Fetch::Whole)
        co_return true;
    QString reason = tr("It may have come incomplete. Try again.");
    if (fetch.outcome == PlayerRoster::Fetch::Failed)
        reason = withoutOuterBlanks(fetch.error);
    const QString text = tr("Nothing was sent. The list of players is out of date, and it could not be read again to "
                            "see who has which number now.\n\n%1")
                             .arg(reason);
    co_await action->tellOfFailure(text);
    co_return false;
}

QCoro::Task<> PlayerCommands::sendCommandToSelectedPlayers(ServerAction *action, QString word,
                                                           QList<ChosenPlayer> chosen, QString optionalArgument)
{
    QString failures;
    for (const ChosenPlayer &player : std::as_const(chosen)) {
        if (!m_roster.isNew()) { // the list has grown old during the commands before
            const PlayerRoster::Fetch fetch = co_await m_roster.fetch();
            if (!*action || fetch.outcome == PlayerRoster::Fetch::CalledOff)
                co_return;
        }
        if (!m_roster.isNew()) {
            failures += failureLine(player.row.name, tr("the list of players could not be read again"));
            continue;
        }
        QString whyNot;
        const std::optional<PlayerRow> present = m_roster.find(player, &whyNot);
        if (!present) {
            failures += failureLine(player.row.name, whyNot);
            continue;
        }
        QString line = word + QLatin1Char(' ') + present->identifier;
        if (!optionalArgument.isEmpty())
            line += QLatin1Char(' ') + optionalArgument;
        const Reply reply = co_await action->request(line);
        if (!*action)
            co_return;
        if (!reply.isSuccess() || reply.text.contains(QLatin1String("is not active")))
            failures += failureLine(player.row.name, withoutOuterBlanks(reply.text));
    }
    if (word != QLatin1String("tell"))
        m_roster.outdate();
    if (failures.isEmpty())
        co_return;
    const QString text = tr("The following player(s) failed to process the '%1' command: ").arg(word) + failures;
    co_await action->tellOfFailure(text);
}

QCoro::Task<> PlayerCommands::confirmAndKickAll()
{
    // The action takes its place in the queue now; the question is asked without waiting for the actions before it.
    ServerAction action(m_server, m_actions, {.action = tr("Kick All")});
    const QStringList buttons{tr("Yes"), tr("No")};
    const AlertManner manner{1, false}; // Return answers "No"
    const int pressed = co_await m_alerts.run(tr("Please Confirm Command"), tr("Do you really want to kick everyone?"),
                                              buttons, manner);
    co_await action.begin();
    if (!action || pressed != 0)
        co_return;
    const QString line = QStringLiteral("kick all");
    const Reply reply = co_await action.request(line);
    if (reply.isCancelled)
        co_return;
    m_roster.outdate();
    if (!reply.isSuccess()) {
        const QString text = tr("KickAll returned an error: %1").arg(reply.text);
        co_await action.tellOfFailure(text);
    }
    if (action)
        emit refreshWanted(5s);
}
