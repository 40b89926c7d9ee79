#include "Reconnecting.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "DvarFetcher.h"
#include "KelServer.h"
#include "Secrets.h"

#include <algorithm>
#include <array>

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace
{

constexpr std::array<std::chrono::seconds, 5> firstDistances{1s, 2s, 4s, 8s, 15s};
constexpr auto probesLast = 10min;

QString hostnameDvar()
{
    return QStringLiteral("sv_hostname");
}

std::chrono::seconds distanceAfter(int probes)
{
    return firstDistances.at(std::min(static_cast<std::size_t>(probes), firstDistances.size() - 1));
}

} // namespace

Reconnecting::Reconnecting(KelServer &server, ActionQueue &actions, Alerts &alerts, DvarFetcher &fetcher,
                           QObject *parent)
    : QObject(parent), m_server(server), m_actions(actions), m_alerts(alerts), m_fetcher(fetcher)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Reconnecting::probe);
    connect(&server.link(), &Link::kindChanged, this, &Reconnecting::followLink);
    connect(&server.link(), &Link::answersAgain, this, &Reconnecting::resume);
}

void Reconnecting::followLink()
{
    m_timer.stop();
    m_probes = 0;
    if (m_server.link().kind() != Link::Kind::Silent)
        return;
    m_lookingFrom = steady_clock::now();
    m_timer.start(distanceAfter(m_probes));
}

void Reconnecting::tryNow()
{
    if (m_server.link().kind() == Link::Kind::Silent)
        probe();
}

void Reconnecting::tryPassword(const QString &password)
{
    m_server.setPassword(password);
    m_server.link().retry();
    probe();
}

void Reconnecting::probe()
{
    if (m_isProbeWaiting)
        return;
    m_isProbeWaiting = true;
    m_actions.start(probeOnce(m_server.connection()));
}

QCoro::Task<> Reconnecting::probeOnce(quint64 connection)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isProbeWaiting = false;
    const auto isOver = [this, connection] {
        return connection != m_server.connection() || m_server.link().kind() != Link::Kind::Silent;
    };
    if (!turn || isOver())
        co_return;
    co_await m_server.ask(hostnameDvar(), KelServer::Asking::Probing);
    constexpr int probesBeforeLookUp = 3; // the name may stand for another address now
    if (++m_probes == probesBeforeLookUp && turn && !isOver())
        co_await m_server.lookUpAgain();
    if (turn && !isOver() && steady_clock::now() - m_lookingFrom < probesLast)
        m_timer.start(distanceAfter(m_probes));
}

void Reconnecting::resume(milliseconds silence)
{
    m_actions.start(reread(m_server.connection(), silence));
}

QCoro::Task<> Reconnecting::reread(quint64 connection, milliseconds silence)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn || connection != m_server.connection())
        co_return;
    // Not before the turn: the answer that told may have been the one to a new name.
    const QString hostname = m_server.dvarList().value(hostnameDvar());
    const QString command = QStringLiteral("dvardump");
    Reply reply = co_await m_server.ask(command);
    if (!turn || !reply.isSuccess() || connection != m_server.connection())
        co_return;
    DvarTable dumped;
    takeDump(reply.text, &dumped);
    const QString found = dumped.value(hostnameDvar(), hostname);
    bool goesOn = true;
    if (found != hostname)
        goesOn = co_await isSameServer(found);
    if (!turn || connection != m_server.connection())
        co_return;
    if (!goesOn) {
        emit disconnectWanted();
        co_return;
    }
    QStringList untold;
    const DvarTable before = m_server.dvarList();
    for (auto each = before.cbegin(); each != before.cend(); ++each) {
        if (!dumped.contains(each.key()))
            untold.append(each.key());
    }
    const QStringList different = m_server.takeDvars(dumped);
    co_await m_server.followMode();
    if (!turn || connection != m_server.connection())
        co_return;
    emit cameBack(silence, static_cast<int>(different.size()));
    m_fetcher.start();
    m_fetcher.askFor(untold);
}

QCoro::Task<bool> Reconnecting::isSameServer(QString hostname)
{
    const QString text = tr("The server calls itself \"%1\" now. Do you want to go on with it?").arg(hostname);
    const QStringList buttons{tr("Go On"), tr("Disconnect")};
    const int pressed = co_await m_alerts.run(tr("Another Server Answers"), text, buttons);
    co_return pressed == 0;
}
