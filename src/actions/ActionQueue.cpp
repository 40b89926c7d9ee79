#include "ActionQueue.h"

#include <QCoroFuture>

#include <exception>

ActionQueue::Turn::~Turn()
{
    if (m_queue != nullptr)
        m_queue->giveWay();
}

ActionQueue::~ActionQueue()
{
    Q_ASSERT_X(isIdle(), "ActionQueue", "an action outlives the queue that started it");
}

void ActionQueue::start(QCoro::Task<> action)
{
    ++m_running;
    const QCoro::Task<> detached = supervise(std::move(action));
}

QCoro::Task<> ActionQueue::supervise(QCoro::Task<> action)
{
    bool isFaulty = true;
    QString fault;
    try {
        co_await action;
        isFaulty = false;
    } catch (const std::exception &exception) {
        fault = QString::fromLocal8Bit(exception.what());
    } catch (...) {
        fault = QStringLiteral("unknown exception");
    }
    if (isFaulty)
        emit faulted(fault);
    if (--m_running == 0)
        emit idle();
}

QCoro::Task<ActionQueue::Turn> ActionQueue::turn()
{
    if (m_isClosed)
        co_return Turn();
    const quint64 droppings = m_droppings;
    if (m_isTurnGiven) {
        QPromise<bool> promise;
        promise.start();
        const QFuture<bool> pending = promise.future();
        m_waiting.push_back(std::move(promise));
        const bool isGranted = co_await pending;
        if (!isGranted)
            co_return Turn();
        if (droppings != m_droppings) { // dropped between the grant and the wake-up
            giveWay();
            co_return Turn();
        }
    }
    m_isTurnGiven = true;
    co_return Turn(this);
}

void ActionQueue::dropWaiting()
{
    ++m_droppings;
    refuseWaiting();
}

void ActionQueue::close()
{
    m_isClosed = true;
    dropWaiting();
    emit closed();
}

void ActionQueue::refuseWaiting()
{
    std::deque<QPromise<bool>> dropped;
    dropped.swap(m_waiting);
    for (QPromise<bool> &promise : dropped) {
        promise.addResult(false);
        promise.finish();
    }
}

void ActionQueue::giveWay()
{
    if (m_waiting.empty()) {
        m_isTurnGiven = false;
        return;
    }
    // The turn stays given: who is woken here comes before anybody who asks in the meantime.
    QPromise<bool> next = std::move(m_waiting.front());
    m_waiting.pop_front();
    next.addResult(true);
    next.finish();
}
