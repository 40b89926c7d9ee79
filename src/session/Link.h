#pragma once

#include "Exchange.h"

#include <QDateTime>
#include <QObject>

#include <chrono>
#include <optional>

/// Whether the server that the session is connected to answers. It is judged only by requests that wait: nothing is
/// sent to find out, as every request carries the password in clear. Main thread only.
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
    /// A request is about to be sent; figuresChanged() follows when the exchange has it.
    void noteSent();
    /// What became of it.
    void noteReply(const Request &request, const Reply &reply, std::chrono::steady_clock::time_point sentAt);

signals:
    void kindChanged(Link::Kind kind);
    void figuresChanged();
    /// The server has answered after `silence`, or takes the password again.
    void answersAgain(std::chrono::milliseconds silence);

private:
    void beginSilence(std::chrono::steady_clock::time_point sentAt);
    void become(Kind kind);

    Exchange &m_exchange;
    Kind m_kind = Kind::Closed;
    std::optional<std::chrono::milliseconds> m_silentFrom; ///< since the machine was started
};
