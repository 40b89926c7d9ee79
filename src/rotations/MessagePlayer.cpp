#include "MessagePlayer.h"

#include "KelServer.h"
#include "Number.h"
#include "Preferences.h"
#include "ServerAction.h"

#include <algorithm>
#include <utility>

MessagePlayer::MessagePlayer(KelServer &server, ActionQueue &actions, Preferences &preferences,
                             std::function<Rows()> rows, std::unique_ptr<OneShotTimer> timer)
    : m_server(server), m_actions(actions), m_preferences(preferences), m_rows(std::move(rows)),
      m_timer(std::move(timer))
{
}

QString MessagePlayer::sayCommand(const QString &text)
{
    return QStringLiteral("say \"%1\"").arg(text);
}

void MessagePlayer::setIndex(int index)
{
    const int last = static_cast<int>(m_rows().size()) - 1;
    const int stored = std::clamp(index, 0, std::max(0, last));
    if (std::exchange(m_index, stored) != stored)
        emit indexChanged(stored);
}

void MessagePlayer::callOff()
{
    m_timer->stop();
    m_isSending = false;
    ++m_showing;
}

void MessagePlayer::start()
{
    callOff();
    if (m_rows().isEmpty())
        return;
    setState(Playing);
    setIndex(0);
    emit touched();
    showCurrent();
}

void MessagePlayer::stop()
{
    callOff();
    setState(Stopped);
    setEntryOnAir(nullptr);
    emit touched();
}

void MessagePlayer::advance()
{
    m_timer->stop();
    if (m_state != Playing)
        return;
    const int next = m_index + 1;
    setIndex(next);
    if (m_index == next)
        showCurrent();
    else if (m_preferences.boolValue(QStringLiteral("checkBoxLoopMessages")))
        start();
    else
        stop();
}

void MessagePlayer::showCurrent()
{
    setIndex(m_index);
    const Rows rows = m_rows();
    if (rows.isEmpty())
        return;
    const auto &row = rows.at(m_index);
    QString text = row->message;
    text.replace(QLatin1Char('"'), QLatin1String("\\\""));
    m_isSending = true;
    setEntryOnAir(row);
    m_actions.start(show(row, sayCommand(text), ++m_showing));
}

QCoro::Task<> MessagePlayer::show(std::shared_ptr<const MessageRotationInst> entry, QString line, quint64 showing)
{
    ServerAction action(m_server, m_actions);
    const bool goesOn = co_await action.begin();
    qint64 shortestWait = 0;
    const Link::Kind link = m_server.link().kind();
    if (goesOn && showing == m_showing && (link == Link::Kind::Silent || link == Link::Kind::Refused)) {
        m_server.console().appendConsoleNote(tr("skipped, as the server does not answer: %1").arg(line));
        shortestWait = 1;
    } else if (goesOn && showing == m_showing) {
        const Reply reply = co_await action.request(line);
        if (action && !reply.isSuccess()) {
            action.leaveTurn(); // nobody may be there to close the alert, and the server is to be looked for meanwhile
            const QString text = ServerAction::failureText(sayName(), reply.text);
            co_await action.tellOfFailure(text);
            shortestWait = 1; // or one alert would follow the other, with no moment to press Stop
        }
    }
    // A turn that was refused because another connection began only costs this one message.
    if (showing == m_showing && !m_actions.isClosed()) {
        m_isSending = false;
        waitFor(entry->duration, shortestWait);
        emit entryOnAirChanged();
    }
}

void MessagePlayer::waitFor(const QString &duration, qint64 shortest)
{
    // Without a number the message stays until Stop: that is how a rotation is held.
    if (const std::optional<qint64> seconds = parseNumber(duration))
        m_timer->start(std::max(*seconds, shortest), [this] { advance(); });
}

void MessagePlayer::setState(PlayState state)
{
    if (std::exchange(m_state, state) != state)
        emit stateChanged(state);
}

void MessagePlayer::setEntryOnAir(std::shared_ptr<const MessageRotationInst> entry)
{
    if (m_entryOnAir == entry)
        return;
    m_entryOnAir = std::move(entry);
    emit entryOnAirChanged();
}
