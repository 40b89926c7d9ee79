#include "PendingDvars.h"

#include "ActionQueue.h"
#include "DvarFetcher.h"
#include "KelServer.h"
#include "Progress.h"

/// Marks the waiting as under way and leaves nothing of it behind, however it ends.
class PendingDvars::Run
{
public:
    explicit Run(PendingDvars &pending) : m_pending(pending)
    {
        m_pending.m_isCancelled = false;
        m_pending.m_isCalledOff = m_pending.m_actions.isClosed();
        setUnderWay(true);
    }
    ~Run()
    {
        m_pending.m_progress.end();
        setUnderWay(false);
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

private:
    void setUnderWay(bool isUnderWay)
    {
        m_pending.m_isUnderWay = isUnderWay;
        emit m_pending.isUnderWayChanged(isUnderWay);
    }

    PendingDvars &m_pending;
};

PendingDvars::PendingDvars(KelServer &server, ActionQueue &actions, DvarFetcher &fetcher, Progress &progress)
    : m_server(server), m_actions(actions), m_fetcher(fetcher), m_progress(progress)
{
    const auto callOff = [this] {
        m_isCalledOff = true;
        m_progress.end();
        m_fetcher.wakeWaiting();
    };
    connect(&server, &KelServer::connectionBegan, this, callOff);
    connect(&server, &KelServer::isConnectedChanged, this, [callOff](bool isConnected) {
        if (!isConnected)
            callOff();
    });
    connect(&actions, &ActionQueue::closed, this, callOff);
    connect(&server.link(), &Link::kindChanged, &fetcher, &DvarFetcher::wakeWaiting);
}

PendingDvars::~PendingDvars()
{
    m_progress.end();
}

QStringList PendingDvars::toCome(const QStringList &names) const
{
    // After a refused password nothing comes until another one is typed, which the progress would be in the way of.
    return m_server.link().kind() == Link::Kind::Refused ? QStringList() : m_fetcher.missing(names);
}

QStringList PendingDvars::unanswered(const QStringList &names) const
{
    QStringList list;
    const DvarTable known = m_server.dvarList();
    for (const QString &name : names) {
        const bool isLeftOut = m_fetcher.isAwaited(name) && !known.contains(name);
        if (isLeftOut || m_fetcher.isUnanswered(name))
            list.append(name);
    }
    return list;
}

QCoro::Task<PendingDvars::End> PendingDvars::finish(QStringList names)
{
    if (m_isUnderWay)
        co_return End::CalledOff;
    if (!m_server.isConnected())
        co_return End::Settled;
    const Run run(*this);
    const bool isOver = co_await isConnectOver();
    if (isOver)
        co_await waitFor(names);
    if (m_isCalledOff || !isOver)
        co_return End::CalledOff;
    co_return m_isCancelled ? End::Cancelled : End::Settled;
}

QCoro::Task<bool> PendingDvars::isConnectOver()
{
    if (m_fetcher.isAsking())
        co_return true;
    // Only at its end a connect tells what is to come, and it has the turn until then.
    const ActionQueue::Turn turn = co_await m_actions.turn();
    co_return static_cast<bool>(turn);
}

QCoro::Task<> PendingDvars::waitFor(QStringList names)
{
    names = toCome(names);
    names.removeDuplicates();
    if (names.isEmpty() || m_isCalledOff)
        co_return;
    m_progress.begin(tr("Asking for settings…"), [this] {
        m_isCancelled = true;
        m_fetcher.wakeWaiting();
    });
    m_fetcher.prefer(names);
    QStringList left = names;
    while (!left.isEmpty() && !m_isCancelled && !m_isCalledOff) {
        m_progress.setDone(names.size() - left.size(), names.size());
        co_await m_fetcher.nextSettled();
        left = toCome(names);
    }
}
