#include "DemoServer.h"

#include "DemoWire.h"

#include <QCoreApplication>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace
{
using namespace std::chrono_literals;

constexpr auto Step = std::chrono::milliseconds(DemoPlayers::StepMilliseconds);
constexpr std::size_t MaximumOutgoing = 8192; // datagrams that wait for their delay; more are lost
constexpr int RequestsAtOnce = 64;            // between two looks at whether to stop
constexpr int StepsAtOnce = 40;               // after a sleep of the machine the game goes on, it does not catch up
constexpr qsizetype LargestDatagram = 65'536;
constexpr qsizetype MaximumCommands = 20'000;
constexpr qsizetype LongestCommand = 4'096;      // longer ones are remembered cut
constexpr auto LongestWait = 50ms;               // between two looks at whether to stop
constexpr auto PortRetry = 250ms;                // when somebody took the port of a server that is away
constexpr quint64 LineSeed = 0x9e3779b97f4a7c15; // faults are independent of the game's random numbers

QString reasonOf(int errorNumber)
{
    return QString::fromStdString(std::generic_category().message(errorNumber));
}

DemoOptions optionsAfterRestart(DemoOptions options)
{
    if (options.restartMode) {
        options.ranked = options.restartMode == DemoMode::Ranked;
        options.playlists = options.restartMode == DemoMode::Playlists;
    }
    return options;
}
} // namespace

DemoServer::DemoServer(DemoOptions options)
    : m_options(std::move(options)), m_takenPort(m_options.port), m_game(m_options), m_line(m_options.seed ^ LineSeed),
      m_restart(m_options.restartAfter > 0ms ? Restart::Pending : Restart::Done),
      m_buffer(LargestDatagram, Qt::Uninitialized)
{
    m_line.setFaults(m_options.faults);
}

DemoServer::~DemoServer()
{
    stop();
}

bool DemoServer::start(QString *error)
{
    Q_ASSERT(!m_thread.joinable());
    if (!openSockets(error)) {
        m_sockets.close();
        return false;
    }
    const Clock::time_point now = Clock::now();
    if (m_restart == Restart::Away) // it was stopped while it was away
        beginAnew();
    m_restartDue = now + m_options.restartAfter;
    m_nextStep = now + Step;
    m_isStopping = false;
    m_thread = std::thread(&DemoServer::run, this);
    return true;
}

void DemoServer::stop()
{
    if (!m_thread.joinable())
        return;
    m_isStopping = true;
    m_thread.join();
    m_outgoing.clear();
    m_sockets.close();
    m_port = 0;
}

bool DemoServer::openSockets(QString *error)
{
    const quint16 port = m_sockets.open(m_takenPort);
    const int reason = errno;
    if (port == 0) {
        if (error)
            *error = QCoreApplication::translate("DemoServer", "The demo server cannot use port %1: %2")
                         .arg(m_takenPort)
                         .arg(reasonOf(reason));
        return false;
    }
    if (!m_sockets.openStranger() && m_options.faults.stranger) {
        const int strangersReason = errno;
        if (error)
            *error = QCoreApplication::translate("DemoServer", "The demo server cannot use the address 127.0.0.2: %1")
                         .arg(reasonOf(strangersReason));
        return false;
    }
    m_port = m_takenPort = port;
    return true;
}

QString DemoServer::password() const
{
    const std::lock_guard lock(m_mutex);
    return m_game.password();
}

void DemoServer::setFaults(DemoFaults faults)
{
    const std::lock_guard lock(m_mutex);
    m_line.setFaults(faults);
}

QStringList DemoServer::commandsSeen() const
{
    const std::lock_guard lock(m_mutex);
    return m_commands;
}

QStringList DemoServer::takeCommands()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_commands, {});
}

QString DemoServer::variable(const QString &name) const
{
    const std::lock_guard lock(m_mutex);
    return m_game.variable(name);
}

int DemoServer::playerCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_game.playerCount();
}

void DemoServer::run()
{
    while (!m_isStopping) {
        m_sockets.wait(waitingTime());
        receive();
        advanceGame();
        sendDue();
        restartWhenDue();
    }
}

void DemoServer::restartWhenDue()
{
    const Clock::time_point now = Clock::now();
    if (m_restart == Restart::Done || now < m_restartDue)
        return;
    if (m_restart == Restart::Pending) {
        m_outgoing.clear();
        m_sockets.close();
        m_restart = Restart::Away;
        m_restartDue = now + m_options.awayFor;
        return;
    }
    if (m_sockets.open(m_takenPort) == 0) {
        m_restartDue = now + PortRetry;
        return;
    }
    // Without a second socket there is no stranger: none was asked for, or start() has failed.
    [[maybe_unused]] const bool hasStranger = m_sockets.openStranger();
    beginAnew();
    m_nextStep = now + Step;
}

void DemoServer::beginAnew()
{
    const std::lock_guard lock(m_mutex);
    m_game = DemoGame(optionsAfterRestart(m_options));
    m_limit = {};
    m_restart = Restart::Done;
}

std::chrono::milliseconds DemoServer::waitingTime() const
{
    Clock::time_point next = Clock::now() + LongestWait;
    if (m_restart != Restart::Done)
        next = std::min(next, m_restartDue);
    if (!m_options.frozen)
        next = std::min(next, m_nextStep);
    if (!m_outgoing.empty())
        next = std::min(next, m_outgoing.begin()->first);
    return std::max(0ms, std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()));
}

void DemoServer::receive()
{
    for (int i = 0; i < RequestsAtOnce; ++i) {
        sockaddr_in from{};
        const qsizetype size = m_sockets.receive(m_buffer, from);
        if (size < 0)
            return;
        answer(QByteArrayView(m_buffer.constData(), size), from);
    }
}

void DemoServer::answer(QByteArrayView request, const sockaddr_in &from)
{
    const std::optional<QString> text = demoRequestText(request);
    if (!text)
        return;
    const Clock::time_point now = Clock::now();
    const std::lock_guard lock(m_mutex);
    if (m_line.losesRequest() || m_limit.locksOut(m_line.faults().lockout, now))
        return;
    const QList<QByteArray> parts = reply(*text, now);
    if (parts.isEmpty())
        return;
    for (const DemoDatagram &datagram : m_line.carry(parts)) {
        if (m_outgoing.size() < MaximumOutgoing)
            m_outgoing.emplace(now + datagram.after, Outgoing{from, datagram});
    }
}

QList<QByteArray> DemoServer::reply(const QString &request, Clock::time_point now)
{
    const QString password = m_game.password();
    if (password.isEmpty())
        return demoReplyDatagrams(QStringLiteral("The server must set 'rcon_password' for clients to use 'rcon'.\n"));
    // The password may hold blanks, so that only knowing it tells where the command begins.
    const bool isRight = request == password || request.startsWith(password + u' ');
    if (!isRight)
        return m_options.refusalText ? demoReplyDatagrams(QStringLiteral("Invalid password.\n"))
                                     : QList<QByteArray>{demoRefusalDatagram()};
    const bool isSilent = m_line.faults().silent;
    if (!isSilent && m_limit.throttles(m_line.faults().throttle, now))
        return {};
    const QString command = request.mid(password.size() + 1);
    m_commands.append(command.left(LongestCommand));
    if (m_commands.size() > MaximumCommands)
        m_commands.removeFirst();
    if (isSilent)
        return {};
    return demoReplyDatagrams(m_game.execute(command));
}

void DemoServer::advanceGame()
{
    if (m_options.frozen)
        return;
    const Clock::time_point now = Clock::now();
    if (now < m_nextStep)
        return;
    const std::lock_guard lock(m_mutex);
    for (int i = 0; i < StepsAtOnce && m_nextStep <= now; ++i) {
        m_game.advance(Step);
        m_nextStep += Step;
    }
    m_nextStep = std::max(m_nextStep, now);
}

void DemoServer::sendDue()
{
    const Clock::time_point now = Clock::now();
    while (!m_outgoing.empty() && m_outgoing.begin()->first <= now) {
        const Outgoing &next = m_outgoing.begin()->second;
        m_sockets.send(next.datagram, next.to);
        m_outgoing.erase(m_outgoing.begin());
    }
}
