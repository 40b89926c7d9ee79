#pragma once

#include <QCoroTask>

#include <QObject>
#include <QPromise>

#include <deque>
#include <utility>

/// Lets the actions that talk to the server run one at a time, in the order in which they were triggered.
/// Main thread only. Whatever an action uses must outlive the queue's last action: see idle().
class ActionQueue : public QObject
{
    Q_OBJECT
public:
    /// The right to talk to the server, held until it is destroyed. False once the action was called off by
    /// dropWaiting(), while it waited or since: it then ends without an alert. So look again after every wait.
    class [[nodiscard]] Turn
    {
    public:
        Turn() = default;
        explicit Turn(ActionQueue *queue) : m_queue(queue), m_droppings(queue->m_droppings) {}
        Turn(Turn &&other) noexcept : m_queue(std::exchange(other.m_queue, nullptr)), m_droppings(other.m_droppings) {}
        Turn &operator=(Turn &&) = delete;
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;
        ~Turn();
        explicit operator bool() const { return m_queue != nullptr && m_queue->m_droppings == m_droppings; }

    private:
        ActionQueue *m_queue = nullptr;
        quint64 m_droppings = 0;
    };

    explicit ActionQueue(QObject *parent = nullptr) : QObject(parent) {}
    ~ActionQueue() override;

    /// Runs an action to its end without anybody waiting for it: the one place where a task is let go.
    /// What the action throws is reported by faulted().
    void start(QCoro::Task<> action);

    /// Resumes when every action that asked before has let go of its turn, or was dropped.
    QCoro::Task<Turn> turn();

    /// Refuses every turn that is not yet given. The running action goes on until it looks at its turn.
    void dropWaiting();

    /// Refuses every turn that is not yet given, and leaves the running action alone.
    void refuseWaiting();

    /// Calls off everything, now and later: no turn is given any more, until reopen().
    void close();
    /// Gives turns again to who asks from now on; who was called off stays so.
    void reopen() { m_isClosed = false; }
    bool isClosed() const { return m_isClosed; }

    /// True when no started action is left.
    bool isIdle() const { return m_running == 0; }

signals:
    /// The last action has ended; its frame may still be on the stack, so delete things from a queued slot.
    void idle();
    void faulted(const QString &what);
    /// Everything has been called off, also what waits without having asked for a turn.
    void closed();

private:
    QCoro::Task<> supervise(QCoro::Task<> action);
    void giveWay();

    std::deque<QPromise<bool>> m_waiting;
    int m_running = 0;
    quint64 m_droppings = 0;
    bool m_isTurnGiven = false;
    bool m_isClosed = false;
};
