#pragma once

#include "LinkStats.h"
#include "RConResult.h"

#include <QCoroTask>

#include <QString>

#include <chrono>
#include <functional>
#include <optional>

/// One command for one server.
struct Request {
    QString host; ///< as typed; dotted IPv4 where no address stands
    int port = 0;
    QString password;
    QString command;
    bool isSingle = false;     ///< one datagram is the whole reply
    bool isBackground = false; ///< nobody waits for it: sent once, never repeated
    QString address = {};      ///< dotted IPv4 that the host was found to have
    bool isProbe = false;      ///< of a server that is silent: unanswered, it tells nothing of haste
};

/// What became of a request: the server's text, or the text of the result code on failure.
struct Reply {
    RConResult result = RConResultError;
    QString text;
    bool isCancelled = false; ///< ended by cancel(): whoever waited for it ends without an alert
    bool isRefused = false;   ///< not sent, as the game cannot hold its text: the text tells which characters
    int sends = 1;
    int doubled = 0;                         ///< datagrams that the network brought twice
    bool mayBeIncomplete = false;            ///< its end looks as if something were missing
    std::chrono::milliseconds roundTrip{-1}; ///< negative where the answer does not tell it

    bool isSuccess() const { return result == RConResultSuccess; }
};

/// Takes the cleaned text of one datagram of a reply.
using Arrived = std::function<void(const QString &text)>;

/// The line to the server that was asked last.
struct LinkState {
    LinkStats stats;
    /// Between two requests that nobody waits for; none when the server wants no more of them.
    std::optional<std::chrono::milliseconds> backgroundDelay = std::chrono::milliseconds(0);
    bool isPaced = false; ///< the server ignores haste
    std::chrono::milliseconds gap{0};
    /// Since when a request has been waiting for its first answer.
    std::optional<std::chrono::steady_clock::time_point> waitingSince;
};

/// The boundary to the network: one request in, one reply out. Main thread only.
class Exchange
{
public:
    /// Text that came after the end of its reply: of which command, and what.
    using CameLate = std::function<void(const QString &command, const QString &text)>;

    Exchange() = default;
    virtual ~Exchange() = default;
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    /// Resumes with the reply, at the latest one silence after the server has said its last. `arrived` is called for
    /// each datagram in the order of arrival, before send() resumes and never after.
    virtual QCoro::Task<Reply> send(Request request, Arrived arrived = {}) = 0;

    /// Ends the requests that are under way at once; their send() resumes from the event loop.
    virtual void cancel() = 0;

    /// Another connection begins: what was learnt of the line and of the server's ways is void, and what comes late is
    /// no longer told.
    virtual void startOver() {}
    virtual LinkState link() const { return {}; }
    void setCameLate(CameLate cameLate) { m_cameLate = std::move(cameLate); }

protected:
    void tellLate(const QString &command, const QString &text) const
    {
        if (m_cameLate)
            m_cameLate(command, text);
    }

private:
    CameLate m_cameLate;
};
