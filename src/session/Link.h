#pragma once

#include "Exchange.h"

#include <QCoroTask>

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <optional>

/// The line to the server that the session is connected to: everything that is asked goes through it, and tells whether
/// the server answers. That is judged only by requests that wait: nothing is sent to find out, as every request carries
/// the password in clear. Main thread only.
class Link : public QObject
{
    Q_OBJECT
public:
    enum class Kind {
        Closed,    ///< not connected
        Answering, ///< as far as is known
        Silent,    ///< a request has got no answer at all, and none has come since
        Refused    ///< the server does not take the password any more
    };
    Q_ENUM(Kind)

    /// `exchange` outlives this.
    explicit Link(Exchange &exchange, QObject *parent = nullptr) : QObject(parent), m_exchange(exchange) {}

    Kind kind() const { return m_kind; }
    /// Another number for each connection, and after cancel(): whoever waits sees that what he waits for is over.
    quint64 connection() const { return m_connection; }
    /// Whether refreshes, messages that are due and the like may ask; what a person does goes out all the same.
    bool mayAskByItself() const { return m_kind == Kind::Answering; }
    /// When the request was sent that first got no answer, as the clock on the wall goes now; invalid unless silent.
    QDateTime silentSince() const;
    /// How long ago that was, counting the time in which the machine slept.
    std::chrono::milliseconds silentFor() const;
    /// What is measured of the line.
    LinkState figures() const { return m_exchange.link(); }

    void open();
    void close();
    /// Another password is tried.
    void retry();
    /// Ends at once what is under way; who waits for it ends without an alert.
    void cancel();

    /// Sends a request of this connection, or of the connect that is under way. What the game cannot hold does not
    /// pass: the reply is a refusal then. For the rest see Exchange::send().
    QCoro::Task<Reply> send(Request request, Arrived arrived = {});

signals:
    void kindChanged(Link::Kind kind);
    void figuresChanged();
    /// The server has answered after `silence`, or takes the password again.
    void answersAgain(std::chrono::milliseconds silence);
    /// Whether a request that somebody waits for is on its way, or its reply.
    void busyChanged(bool isBusy);

private:
    void begin(Kind kind);
    void become(Kind kind);
    void judge(const Request &request, const Reply &reply, std::chrono::steady_clock::time_point sentAt);
    void beginSilence(std::chrono::steady_clock::time_point sentAt);

    Exchange &m_exchange;
    Kind m_kind = Kind::Closed;
    quint64 m_connection = 0;
    int m_underWay = 0;                                    ///< requests that somebody waits for
    std::optional<std::chrono::milliseconds> m_silentFrom; ///< since the machine was started
};
