#pragma once

#include "RConResult.h"

#include <QString>

#include <stop_token>

/// One request to one server and its reply. Stateless, any thread; blocks it, so the window calls it only through
/// Exchange.
class RCon
{
public:
    /// Sends `command` up to three times, again only after a time-out, and gathers every datagram of the reply. Takes
    /// one receive time-out longer than the reply, and 3.25 s if none comes.
    /// @param host   dotted IPv4 address; anything else ends with RConResultError before anything is sent or logged.
    /// @param port   only the low 16 bits count.
    /// @param reply  cleaned text on success, the text of the result on failure; may be null.
    /// @param stop   cancels from another thread: nothing more is sent, a pause ends at once and a running read within
    /// one
    ///               receive time-out. The result is then RConResultError, and the attempt that was cut short gets no
    ///               result line in the traffic log.
    static RConResult sendTo(const QString &host, int port, const QString &password, const QString &command,
                             QString *reply = nullptr, const std::stop_token &stop = {});

    /// The same, but a reply is its first datagram: nothing waits for more.
    static RConResult sendSingleTo(const QString &host, int port, const QString &password, const QString &command,
                                   QString *reply = nullptr, const std::stop_token &stop = {});

    /// The text of `result`, null for a value that is none.
    static QString resultStr(RConResult result);
};
