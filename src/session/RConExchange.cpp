#include "RConExchange.h"

#include "Flight.h"

#include <QCoroFuture>

#include <algorithm>
#include <utility>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

RConExchange::RConExchange() = default;

RConExchange::~RConExchange()
{
    cancel();
}

QCoro::Task<Reply> RConExchange::send(Request request, Arrived arrived)
{
    DatagramPacketError error;
    const QString address = request.address.isEmpty() ? request.host : request.address;
    auto packet = DatagramPacket::initWithHost(address, static_cast<quint16>(request.port), &error);
    if (!packet)
        co_return Reply{RConResultError, error.localizedDescription, false};
    talkTo(packet->server());
    RCon::Task task;
    task.server = packet->server();
    task.command = request.command;
    task.isSingle = request.isSingle;
    task.isBackground = request.isBackground;
    task.firstWait = std::chrono::ceil<milliseconds>(m_stats.firstWait());
    task.end = m_ways.endOf(request.command);

    auto *flight = new Flight(request, std::move(task), std::move(packet));
    flight->setParent(this);
    connect(flight, &Flight::arrived, this, [this, flight](const QString &text) { pass(flight, text); });
    connect(flight, &Flight::finished, this, [this, flight] { finish(flight); });
    connect(flight, &Flight::cameLate, this, [this, flight](const QString &text) { noteLate(flight, text); });
    connect(flight, &Flight::cameTwice, this, [this] { m_stats.countDoubled(1); });
    connect(flight, &Flight::landed, flight, &QObject::deleteLater);
    auto waiter = std::make_unique<Waiter>();
    waiter->flight = flight;
    waiter->arrived = std::move(arrived);
    waiter->promise.start();
    QFuture<Reply> pending = waiter->promise.future();
    m_waiters.push_back(std::move(waiter));
    flight->start();
    co_await pending;
    co_return pending.takeResult();
}

void RConExchange::cancel()
{
    std::vector<std::unique_ptr<Waiter>> cancelled;
    cancelled.swap(m_waiters);
    for (const std::unique_ptr<Waiter> &waiter : cancelled) {
        waiter->flight->abandon();
        waiter->flight->deleteLater();
        waiter->arrived = {}; // before the answer, so that nothing follows it
        Reply reply;
        reply.text = RCon::resultStr(RConResultError);
        reply.isCancelled = true;
        waiter->promise.addResult(std::move(reply));
        waiter->promise.finish();
    }
}

void RConExchange::startOver()
{
    // What lingers belongs to the connection before.
    for (Flight *flight : findChildren<Flight *>()) {
        if (flight->isFinished()) {
            flight->abandon();
            flight->deleteLater();
        }
    }
    m_stats = {};
    m_pacer = {};
    m_ways = {};
}

void RConExchange::talkTo(const Endpoint &server)
{
    if (std::exchange(m_server, server) != server)
        startOver();
}

LinkState RConExchange::link() const
{
    const steady_clock::time_point now = steady_clock::now();
    LinkState state;
    state.stats = m_stats;
    state.gap = std::chrono::ceil<milliseconds>(m_pacer.gap());
    state.isPaced = m_pacer.isMeasured() && m_pacer.gap() > 2 * Pacer::shortestGap;
    state.backgroundDelay = std::nullopt;
    if (const std::optional<Pacer::TimePoint> next = m_pacer.next())
        state.backgroundDelay = std::max(milliseconds(0), std::chrono::ceil<milliseconds>(*next - now));
    for (const std::unique_ptr<Waiter> &waiter : m_waiters) {
        if (!waiter->flight->outcome().firstAnswerAfter)
            state.waitingSince = waiter->flight->sentAt();
    }
    return state;
}

std::unique_ptr<RConExchange::Waiter> RConExchange::takeWaiter(const Flight *flight)
{
    const auto found = std::find_if(m_waiters.begin(), m_waiters.end(),
                                    [flight](const auto &waiter) { return waiter->flight == flight; });
    Q_ASSERT(found != m_waiters.end());
    std::unique_ptr<Waiter> waiter = std::move(*found);
    m_waiters.erase(found);
    return waiter;
}

void RConExchange::pass(const Flight *flight, const QString &text)
{
    for (const std::unique_ptr<Waiter> &waiter : m_waiters) {
        if (waiter->flight != flight || !waiter->arrived)
            continue;
        const Arrived arrived = waiter->arrived; // it may call the request off, and itself with it
        arrived(text);
        return;
    }
}

void RConExchange::finish(Flight *flight)
{
    noteOutcome(*flight);
    const std::unique_ptr<Waiter> waiter = takeWaiter(flight);
    waiter->arrived = {};
    waiter->promise.addResult(replyOf(*flight));
    waiter->promise.finish();
}

void RConExchange::noteOutcome(const Flight &flight)
{
    const RCon::Outcome &outcome = flight.outcome();
    m_stats.countStrangers(outcome.strangers);
    m_stats.countDoubled(outcome.doubled);
    if (!outcome.firstAnswerAfter) {
        m_stats.remainedUnanswered();
        if (flight.isBackground() && !flight.isProbe())
            m_pacer.ignored(flight.sentAt());
        return;
    }
    const steady_clock::time_point answeredAt = flight.sentAt() + *outcome.firstAnswerAfter;
    // A program that was stopped, or held up, reads its answers late: the line is no slower for that.
    if (outcome.sends == 1 && outcome.wasReadLate)
        m_stats.answeredUnmeasured(answeredAt);
    else if (outcome.sends == 1)
        m_stats.answered(*outcome.firstAnswerAfter, answeredAt);
    else
        m_stats.answeredAmbiguously(outcome.wasReadLate ? LinkStats::Duration::zero() : *outcome.firstAnswerAfter,
                                    answeredAt);
    if (flight.isBackground())
        m_pacer.answered(flight.sentAt());
    else
        m_pacer.noteOther(flight.sentAt());
}

Reply RConExchange::replyOf(const Flight &flight)
{
    const RCon::Outcome &outcome = flight.outcome();
    Reply reply;
    reply.result = outcome.result;
    reply.sends = static_cast<int>(outcome.sends);
    reply.doubled = static_cast<int>(outcome.doubled);
    reply.mayBeIncomplete = m_ways.noteReply(flight.command(), outcome);
    if (outcome.sends == 1 && outcome.firstAnswerAfter && !outcome.wasReadLate)
        reply.roundTrip = std::chrono::round<milliseconds>(*outcome.firstAnswerAfter);
    const std::optional<Endpoint> stranger = outcome.plausibleStranger;
    reply.text = outcome.text;
    if (reply.result == RConResultTimeout && stranger)
        reply.text += u' ' + tr("%1 answered instead.").arg(stranger->addressText());
    return reply;
}

void RConExchange::noteLate(Flight *flight, const QString &text)
{
    m_stats.countLate();
    m_ways.noteLate(flight->command());
    tellLate(flight->command(), text);
}
