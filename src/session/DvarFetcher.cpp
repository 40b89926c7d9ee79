#include "DvarFetcher.h"

#include "ActionQueue.h"
#include "UnknownDvars.h"

#include <QCoroFuture>

#include <algorithm>
#include <utility>

DvarFetcher::DvarFetcher(KelServer &server, ActionQueue &actions, UnknownDvars &unknown, QObject *parent)
    : QObject(parent), m_server(server), m_actions(actions), m_unknown(unknown)
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &DvarFetcher::step);
    connect(&server, &KelServer::didConnect, this, &DvarFetcher::start);
    connect(&server, &KelServer::connectionBegan, this, &DvarFetcher::stop);
    connect(&server, &KelServer::isConnectedChanged, this, [this](bool isConnected) {
        if (!isConnected)
            stop();
    });
    connect(&server, &KelServer::dvarWritten, this, [this](const QString &name) {
        if (!m_catalogued.contains(name) || m_server.dvarList().contains(name))
            return;
        askFor({name});
        prefer({name});
    });
    connect(&server.link(), &Link::kindChanged, this, &DvarFetcher::schedule);
}

DvarFetcher::~DvarFetcher()
{
    wakeWaiting();
}

void DvarFetcher::start()
{
    stop();
    m_unanswered.clear();
    m_catalogued = m_server.cataloguedDvars();
    const DvarTable known = m_server.dvarList();
    QStringList names;
    for (const QString &name : std::as_const(m_catalogued)) {
        if (!known.contains(name))
            names.append(name);
    }
    const QStringList unknownLast = m_unknown.of(m_server.serverKey(), QDateTime::currentDateTime());
    std::stable_partition(names.begin(), names.end(),
                          [&unknownLast](const QString &name) { return !unknownLast.contains(name); });
    askFor(names);
    if (names.isEmpty() && !m_catalogued.isEmpty())
        emit finished(0, static_cast<int>(m_catalogued.size()));
}

void DvarFetcher::askFor(const QStringList &names)
{
    m_queue.add(names);
    for (const QString &name : names) {
        m_notOnServer.removeAll(name);
        m_unanswered.removeAll(name);
    }
    tellProgress();
    emit began();
    schedule();
}

void DvarFetcher::prefer(const QStringList &names)
{
    m_queue.prefer(names);
    m_isLookedAt = m_isLookedAt || !missing(names).isEmpty();
    schedule();
}

void DvarFetcher::askAgain()
{
    m_unknown.forget(m_server.serverKey());
    askFor(std::exchange(m_notOnServer, {}) + std::exchange(m_unanswered, {}));
}

void DvarFetcher::stop()
{
    m_timer.stop();
    m_unanswered += missing(m_catalogued);
    m_queue.clear();
    m_catalogued.clear();
    m_notOnServer.clear();
    m_isLookedAt = false;
    wakeWaiting();
}

QStringList DvarFetcher::missing(const QStringList &names) const
{
    QStringList rest;
    for (const QString &name : names) {
        if (m_queue.contains(name))
            rest.append(name);
    }
    return rest;
}

bool DvarFetcher::isUnanswered(const QString &name) const
{
    return m_unanswered.contains(name) && !m_server.dvarList().contains(name);
}

void DvarFetcher::schedule()
{
    if (m_queue.isEmpty() || m_isStepUnderWay || !m_server.link().mayAskByItself())
        return;
    const LinkState line = m_server.link().figures();
    if (!line.backgroundDelay && !m_isLookedAt)
        return; // what is left is asked for when somebody looks at it
    m_timer.start(line.backgroundDelay.value_or(line.gap));
}

void DvarFetcher::step()
{
    if (m_queue.isEmpty() || m_isStepUnderWay || !m_server.link().mayAskByItself())
        return;
    m_isStepUnderWay = true;
    m_actions.start(fetchNext(m_server.connection()));
}

QCoro::Task<> DvarFetcher::fetchNext(quint64 connection)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    const bool isOfConnection = turn && connection == m_server.connection() && m_server.link().mayAskByItself();
    if (isOfConnection && !m_queue.isEmpty()) {
        const QString name = m_queue.first();
        const Reply reply = co_await m_server.ask(name, KelServer::Asking::InTheBackground);
        const bool isSettling = turn && connection == m_server.connection() && !reply.isCancelled;
        if (isSettling)
            settle(name, reply);
        // Sent once each, they may have been ignored for their haste. Is anybody there?
        constexpr int unansweredToDoubt = 5;
        if (isSettling && m_noAnswersInARow == unansweredToDoubt) {
            m_noAnswersInARow = 0;
            const QString anything = QStringLiteral("sv_hostname");
            co_await m_server.ask(anything);
        }
    }
    m_isStepUnderWay = false;
    schedule();
}

void DvarFetcher::settle(const QString &name, const Reply &reply)
{
    if (reply.result == RConResultInvalidPassword)
        return; // whoever finds the right one decides
    m_noAnswersInARow = reply.isSuccess() ? 0 : m_noAnswersInARow + 1;
    if (!reply.isSuccess()) {
        if (m_queue.postpone(name))
            return;
        m_unanswered.append(name); // asked for often enough
    } else if (const std::optional<QString> value = toldValue(reply.text)) {
        m_server.takeDvar(name, *value);
    } else {
        if (isUnknownDvar(reply.text))
            m_server.dropDvar(name); // it may have known the variable before it restarted
        if (m_catalogued.contains(name))
            m_notOnServer.append(name);
    }
    m_queue.remove(name);
    emit settled(name);
    tellProgress();
    if (m_queue.isEmpty())
        finish();
    wakeWaiting();
}

void DvarFetcher::finish()
{
    m_isLookedAt = false;
    m_unknown.remember(m_server.serverKey(), m_notOnServer, QDateTime::currentDateTime());
    emit finished(static_cast<int>(m_notOnServer.size()), static_cast<int>(m_catalogued.size()));
}

QCoro::Task<> DvarFetcher::nextSettled()
{
    if (m_queue.isEmpty())
        co_return;
    QPromise<void> promise;
    promise.start();
    const QFuture<void> pending = promise.future();
    m_waiting.push_back(std::move(promise));
    co_await pending;
}

void DvarFetcher::wakeWaiting()
{
    std::vector<QPromise<void>> waiting;
    waiting.swap(m_waiting);
    for (QPromise<void> &promise : waiting)
        promise.finish();
}

void DvarFetcher::tellProgress()
{
    const auto left = std::count_if(m_catalogued.begin(), m_catalogued.end(),
                                    [this](const QString &name) { return m_queue.contains(name); });
    emit progressed(static_cast<int>(m_catalogued.size() - left), static_cast<int>(m_catalogued.size()));
}
