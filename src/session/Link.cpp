#include "Link.h"

#include "Console.h"
#include "GameText.h"

#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// @return nothing for what the game can hold. The characters of a password are named nowhere.
static QString reasonOfRefusal(const Request &request)
{
    const GameText command = GameText::asItStands(request.command);
    const bool isPasswordSendable = GameText::asItStands(request.password).isSendable();
    if (isPasswordSendable && command.isSendable())
        return {};
    if (!isPasswordSendable || Console::writesPassword(request.command))
        return Link::tr("The game cannot hold a character of this password. Nothing was sent.");
    return Link::tr("%1 Nothing was sent.").arg(command.complaint());
}

milliseconds Link::silentFor() const
{
    if (!m_silentSince.isValid())
        return milliseconds(0);
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - m_silentFrom);
}

void Link::open()
{
    begin(Kind::Answering);
}

void Link::close()
{
    begin(Kind::Closed);
}

void Link::begin(Kind kind)
{
    ++m_connection;
    m_silentSince = {};
    become(kind);
}

void Link::retry()
{
    if (m_kind != Kind::Refused)
        return;
    if (!m_silentSince.isValid()) // it had answered until it refused
        fallSilent(steady_clock::now());
    become(Kind::Silent);
}

void Link::cancel()
{
    ++m_connection;
    m_exchange.cancel();
}

QCoro::Task<Reply> Link::send(Request request, Arrived arrived)
{
    const QString refusal = reasonOfRefusal(request);
    if (!refusal.isEmpty())
        co_return Reply{RConResultError, refusal, false, true};
    const quint64 connection = m_connection;
    const auto sentAt = steady_clock::now();
    if (!request.isBackground && ++m_underWay == 1)
        emit busyChanged(true);
    QMetaObject::invokeMethod(this, &Link::figuresChanged, Qt::QueuedConnection); // when the exchange has it
    Reply reply = co_await m_exchange.send(request, arrived);
    if (!request.isBackground && --m_underWay == 0)
        emit busyChanged(false);
    emit figuresChanged();
    if (connection == m_connection && m_kind != Kind::Closed)
        judge(request, reply, sentAt);
    co_return reply;
}

void Link::judge(const Request &request, const Reply &reply, steady_clock::time_point sentAt)
{
    if (reply.isCancelled)
        return;
    if (reply.result == RConResultInvalidPassword) {
        become(Kind::Refused);
        return;
    }
    if (reply.result == RConResultTimeout || reply.result == RConResultError) {
        // One that nobody waits for is sent once, and may have been ignored for its haste.
        if (m_kind != Kind::Answering || request.isBackground || reply.result == RConResultError)
            return;
        fallSilent(sentAt);
        become(Kind::Silent);
        return;
    }
    const Kind before = m_kind;
    const milliseconds silence = silentFor();
    m_silentSince = {};
    become(Kind::Answering);
    if (before != Kind::Answering)
        emit answersAgain(silence);
}

void Link::fallSilent(steady_clock::time_point sentAt)
{
    m_silentFrom = sentAt;
    const auto ago = std::chrono::duration_cast<milliseconds>(steady_clock::now() - sentAt);
    m_silentSince = QDateTime::currentDateTime().addMSecs(-ago.count());
}

void Link::become(Kind kind)
{
    if (std::exchange(m_kind, kind) != kind)
        emit kindChanged(kind);
}
