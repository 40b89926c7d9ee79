#include "Link.h"

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

milliseconds Link::silentFor() const
{
    return m_silentFrom ? timeSinceStart() - *m_silentFrom : milliseconds(0);
}

void Link::open()
{
    m_silentFrom.reset();
    become(Kind::Answering);
}

void Link::close()
{
    m_silentFrom.reset();
    become(Kind::Closed);
}

void Link::retry()
{
    if (m_kind != Kind::Refused)
        return;
    if (!m_silentFrom) // it had answered until it refused
        beginSilence(steady_clock::now());
    become(Kind::Silent);
}

void Link::noteSent()
{
    QMetaObject::invokeMethod(this, &Link::figuresChanged, Qt::QueuedConnection);
}

void Link::noteReply(const Request &request, const Reply &reply, steady_clock::time_point sentAt)
{
    emit figuresChanged();
    if (m_kind == Kind::Closed || reply.isCancelled || reply.isRefused)
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
