#include "Link.h"

#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

milliseconds Link::silentFor() const
{
    if (!m_silentSince.isValid())
        return milliseconds(0);
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - m_silentFrom);
}

void Link::open()
{
    m_silentSince = {};
    become(Kind::Answering);
}

void Link::close()
{
    m_silentSince = {};
    become(Kind::Closed);
}

void Link::retry()
{
    if (m_kind != Kind::Refused)
        return;
    if (!m_silentSince.isValid()) { // it had answered until it refused
        m_silentFrom = steady_clock::now();
        m_silentSince = QDateTime::currentDateTime();
    }
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
        m_silentFrom = sentAt;
        m_silentSince = QDateTime::currentDateTime().addMSecs(
            -std::chrono::duration_cast<milliseconds>(steady_clock::now() - sentAt).count());
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

void Link::become(Kind kind)
{
    if (std::exchange(m_kind, kind) != kind)
        emit kindChanged(kind);
}
