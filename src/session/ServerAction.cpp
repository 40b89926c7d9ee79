#include "ServerAction.h"

#include "Alerts.h"
#include "Console.h"
#include "DvarReplies.h"
#include "KelServer.h"
#include "Secrets.h"

#include <utility>

/// The first line of a reply that says anything, no longer than a line of the window.
static QString firstLine(const QString &reply)
{
    constexpr qsizetype longest = 200;
    return reply.trimmed().section(QLatin1Char('\n'), 0, 0).left(longest).simplified();
}

ServerAction::ServerAction(KelServer &server, ActionQueue &actions, Outcome outcome)
    : m_server(server), m_place(actions.turn()), m_outcome(std::move(outcome))
{
}

ServerAction::~ServerAction()
{
    if (!*this || m_outcome.action.isEmpty() || !m_outcome.time.isValid())
        return;
    if (m_outcome.isSuccess && !m_said.isEmpty())
        m_outcome.text = m_said.join(QStringLiteral("; "));
    m_server.tellOutcome(m_outcome);
}

QCoro::Task<bool> ServerAction::begin()
{
    ActionQueue::Turn turn = co_await m_place;
    m_turn.emplace(std::move(turn));
    co_return static_cast<bool>(*m_turn);
}

ServerAction::operator bool() const
{
    return m_turn && *m_turn && !m_isCancelled;
}

QCoro::Task<bool> ServerAction::send(QString line, QString name)
{
    if (!*this)
        co_return false;
    const Reply reply = co_await request(line);
    if (name.isEmpty())
        name = line.section(QLatin1Char(' '), 0, 0);
    const bool isTaken = co_await tellUnlessTaken(reply, name);
    co_return isTaken;
}

QCoro::Task<bool> ServerAction::write(QString dvar, QString value)
{
    if (!*this)
        co_return false;
    const Reply reply = co_await m_server.setDvar(dvar, value);
    note(reply, holdsPassword(dvar));
    const bool isTaken = co_await tellUnlessTaken(reply, dvar);
    co_return isTaken;
}

QCoro::Task<Reply> ServerAction::request(QString line)
{
    const Reply reply = co_await m_server.sendCommand(line);
    note(reply, Console::writesPassword(line));
    co_return reply;
}

void ServerAction::note(const Reply &reply, bool isSecret, const QString &unsaid)
{
    m_isCancelled = m_isCancelled || reply.isCancelled;
    m_isRefused = reply.isRefused;
    m_outcome.time = QDateTime::currentDateTime();
    // The text of a failed exchange is our own.
    QString said = isSecret && reply.isSuccess() ? QString() : firstLine(reply.text);
    if (!reply.isSuccess() || isValueRefused(reply.text)) {
        m_outcome.isSuccess = false;
        m_outcome.text = said.isEmpty() ? tr("The server has refused it.") : said;
        return;
    }
    if (said.isEmpty())
        said = unsaid;
    if (!said.isEmpty() && !m_said.contains(said))
        m_said.append(said);
}

QCoro::Task<bool> ServerAction::tellUnlessTaken(Reply reply, QString name)
{
    if (!*this)
        co_return false;
    if (reply.isSuccess())
        co_return true;
    const QString text = failureText(name, reply.text);
    co_await tellOfFailure(text);
    co_return false;
}

QString ServerAction::failureText(const QString &name, const QString &error)
{
    return tr("'%1' returned an error: %2").arg(name, error);
}

QCoro::Task<> ServerAction::tellOfFailure(QString text)
{
    m_outcome.isSuccess = false;
    m_outcome.time = QDateTime::currentDateTime();
    if (m_outcome.text.isEmpty())
        m_outcome.text = text.simplified();
    co_await m_server.alerts().run(tr("Remote Command Failure"), text);
}
