#pragma once

#include "Exchange.h"
#include "LinkStats.h"
#include "Pacer.h"
#include "ServerWays.h"

#include <QObject>
#include <QPromise>

#include <memory>
#include <vector>

class Flight;

/// Exchanges with game servers over UDP, driven by the main loop.
class RConExchange final : public QObject, public Exchange
{
    Q_OBJECT
public:
    RConExchange();
    /// Nobody may be waiting for a reply any more.
    ~RConExchange() override;

    QCoro::Task<Reply> send(Request request, Arrived arrived = {}) override;
    void cancel() override;
    void startOver() override;
    LinkState link() const override;

private:
    struct Waiter {
        Flight *flight; // a child of the exchange
        QPromise<Reply> promise;
        Arrived arrived;
    };

    void talkTo(const Endpoint &server);
    std::unique_ptr<Waiter> takeWaiter(const Flight *flight);
    void pass(const Flight *flight, const QString &text);
    void finish(Flight *flight);
    void noteOutcome(const Flight &flight);
    Reply replyOf(const Flight &flight);
    void noteLate(Flight *flight, const QString &text);

    std::vector<std::unique_ptr<Waiter>> m_waiters;
    Endpoint m_server; ///< to which the rest applies
    LinkStats m_stats;
    Pacer m_pacer;
    ServerWays m_ways;
};
