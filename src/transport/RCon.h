#pragma once

#include "Endpoint.h"
#include "RConResult.h"
#include "ReplyEnd.h"

#include <QByteArrayView>
#include <QHash>
#include <QString>

#include <chrono>
#include <optional>

class TrafficLog;

/// One request to one server and its gathered reply, as a machine without socket and clock: it is told what came and
/// when, and says what to do next. It sends at most three times, again only when nothing has come; a reply is over when
/// nothing more has come for half a second (three quarters after a repeated send), or when its end is known. Any
/// thread, one at a time.
class RCon
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// What there is to do, and how to go about it.
    struct Task {
        Endpoint server;
        QString command;                          ///< without the password
        bool isSingle = false;                    ///< the first datagram is the whole reply
        bool isBackground = false;                ///< sent once, never repeated
        std::chrono::milliseconds firstWait{500}; ///< before the request is repeated; not less
        ReplyEnd end;                             ///< when the reply is whole before silence ends it
    };

    /// What to do next, and until when to wait for datagrams then.
    struct Step {
        enum class Kind { Send, Wait, Finished };

        Kind kind = Kind::Finished;
        TimePoint until;
        QString text; ///< what the datagram has added to the reply
    };

    /// What has become of the request so far.
    struct Outcome {
        RConResult result = RConResultTimeout;
        QString text; ///< cleaned, on success; else the text of the result
        unsigned sends = 0;
        quint32 datagrams = 0;
        unsigned doubled = 0; ///< datagrams that came once more than the request was sent
        bool isEndKnown = false;
        /// From the first send to the first datagram; none as long as nothing has come.
        std::optional<std::chrono::steady_clock::duration> firstAnswerAfter;
        bool wasReadLate = false; ///< the first datagram was read when its wait was over: nobody knows when it came
        unsigned strangers = 0;   ///< datagrams from other addresses
        std::optional<Endpoint> plausibleStranger; ///< one of them that answers like a game server
    };

    static constexpr quint32 mostDatagrams = 65'536;
    static constexpr qsizetype mostCharacters = 16 * 1024 * 1024;

    /// `log` outlives the machine.
    RCon(Task task, TrafficLog &log);
    Q_DISABLE_COPY_MOVE(RCon)

    /// @param now  the steady clock's time; later calls never go back.
    Step start(TimePoint now);
    /// A datagram has come from somebody. Once finished, it can only be late: see takeLate().
    Step received(QByteArrayView datagram, const Endpoint &from, TimePoint now);
    /// Nothing came until the time that the last step named. Called earlier, it says how long to wait on.
    Step elapsed(TimePoint now);
    /// The socket can no longer be read.
    Step failed();

    /// A datagram after an end that was known. @return its text, if the reply lacks it; otherwise nothing.
    QString takeLate(QByteArrayView datagram, const Endpoint &from);

    bool isFinished() const { return m_isFinished; }
    const Outcome &outcome() const { return m_outcome; }

    /// The text of `result`, null for a value that is none.
    static QString resultStr(RConResult result);

private:
    Step send(TimePoint now);
    Step wait(QString text = {}) const;
    Step gather(QString text, TimePoint now);
    Step finish(RConResult result);
    void noteStranger(QByteArrayView datagram, const Endpoint &from);
    void noteSeen(QByteArrayView datagram);

    Task m_task;
    TrafficLog &m_log;
    Outcome m_outcome;
    TimePoint m_firstSend;
    TimePoint m_until;
    QHash<std::size_t, unsigned> m_seen; ///< how often each datagram came, by its bytes
    bool m_isFinished = false;
};
