#include "Link.h"

#include "Console.h"
#include "GameText.h"

#include <ctime>
#include <utility>

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Goes on while the machine sleeps, unlike the steady clock, and does not jump, unlike the clock on the wall.
static milliseconds timeSinceStart()
{
#ifdef CLOCK_BOOTTIME
    constexpr clockid_t clock = CLOCK_BOOTTIME;
#else
    constexpr clockid_t clock = CLOCK_MONOTONIC;
#endif
    timespec now{};
    static_cast<void>(::clock_gettime(clock, &now));
    return std::chrono::seconds(now.tv_sec) + duration_cast<milliseconds>(std::chrono::nanoseconds(now.tv_nsec));
}

QDateTime Link::silentSince() const
{
    return m_silentFrom ? QDateTime::currentDateTime().addMSecs(-silentFor().count()) : QDateTime();
}

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
    return m_silentFrom ? timeSinceStart() - *m_silentFrom : milliseconds(0);
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
    m_silentFrom.reset();
    become(kind);
}

void Link::retry()
{
    if (m_kind != Kind::Refused)
        return;
    if (!m_silentFrom) // it had answered until it refused
        beginSilence(steady_clock::now());
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
        beginSilence(sentAt);
        become(Kind::Silent);
        return;
    }
    const Kind before = m_kind;
    const milliseconds silence = silentFor();
    m_silentFrom.reset();
    become(Kind::Answering);
    if (before != Kind::Answering)
        emit answersAgain(silence);
}

void Link::beginSilence(steady_clock::time_point sentAt)
{
    m_silentFrom = timeSinceStart() - duration_cast<milliseconds>(steady_clock::now() - sentAt);
}

void Link::become(Kind kind)
{
    if (std::exchange(m_kind, kind) != kind)
        emit kindChanged(kind);
}
