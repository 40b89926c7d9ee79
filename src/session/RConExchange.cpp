#include "RConExchange.h"

#include "RCon.h"

#include <QCoroFuture>
#include <QtConcurrentRun>

static Reply exchange(const Request &request, const std::stop_token &stop)
{
    Reply reply;
    const auto road = request.isSingle ? &RCon::sendSingleTo : &RCon::sendTo;
    reply.result = road(request.host, request.port, request.password, request.command, &reply.text, stop);
    reply.isCancelled = stop.stop_requested();
    return reply;
}

RConExchange::RConExchange()
{
    // Turns let one action talk at a time; the second thread serves a request that starts while a cancelled one ends.
    m_worker.setMaxThreadCount(2);
}

RConExchange::~RConExchange()
{
    cancel();
    m_worker.waitForDone();
}

QCoro::Task<Reply> RConExchange::send(Request request)
{
    const std::stop_token stop = m_stop.get_token();
    QFuture<Reply> pending = QtConcurrent::run(&m_worker, [request, stop] { return exchange(request, stop); });
    co_await pending;
    co_return pending.takeResult(); // no copy stays, so that the reply's reader can wipe it
}

void RConExchange::cancel()
{
    m_stop.request_stop();
    m_stop = std::stop_source();
}
