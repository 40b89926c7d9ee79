#pragma once

#include "RConResult.h"

#include <QCoroTask>

#include <QString>

/// One command for one server.
struct Request {
    QString host; ///< dotted IPv4
    int port = 0;
    QString password;
    QString command;
    bool isSingle = false; ///< one datagram is the whole reply
};

/// What became of a request: the server's text, or the text of the result code on failure.
struct Reply {
    RConResult result = RConResultError;
    QString text;
    bool isCancelled = false; ///< ended by cancel(): whoever waited for it ends without an alert
    bool isRefused = false;   ///< not sent, as the game cannot hold its text: the text tells which characters

    bool isSuccess() const { return result == RConResultSuccess; }
};

/// The boundary to the network: one request in, one reply out. Main thread only.
class Exchange
{
public:
    Exchange() = default;
    virtual ~Exchange() = default;
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    /// Resumes with the reply, at the latest 3.25 s after the server has fallen silent.
    virtual QCoro::Task<Reply> send(Request request) = 0;

    /// Ends the requests that are under way, each within one receive time-out (750 ms).
    virtual void cancel() = 0;
};
