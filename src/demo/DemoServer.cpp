#include "DemoServer.h"

#include "DemoWire.h"

#include <QCoreApplication>

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace
{
using namespace std::chrono_literals;

constexpr auto Step = std::chrono::milliseconds(DemoPlayers::StepMilliseconds);
constexpr std::size_t MaximumOutgoing = 8192; // datagrams that wait for their delay; more are lost
constexpr int RequestsAtOnce = 64;            // between two looks at whether to stop
constexpr int StepsAtOnce = 40;               // after a sleep of the machine the game goes on, it does not catch up
constexpr qsizetype LargestDatagram = 65'536;
constexpr auto PortRetry = 250ms;                // when somebody took the port of a server that is away
constexpr quint64 LineSeed = 0x9e3779b97f4a7c15; // faults are independent of the game's random numbers

bool setNonBlocking(int descriptor)
{
    return ::fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0 && ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}

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
    if (m_thread.joinable()) {
        if (error)
            *error = QCoreApplication::translate("DemoServer", "The demo server runs already.");
        return false;
    }
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
    wake();
    m_thread.join();
    m_outgoing.clear();
    m_sockets.close();
    m_port = 0;
}

bool DemoServer::openWakePipe()
{
    std::array<int, 2> ends{-1, -1};
    if (::pipe(ends.data()) != 0)
        return false;
    m_wakeEnd = DemoDescriptor(ends[0]);
    m_wakeStart = DemoDescriptor(ends[1]);
    return setNonBlocking(ends[0]) && setNonBlocking(ends[1]);
}

bool DemoServer::openSockets(QString *error)
{
    const quint16 port = openWakePipe() ? m_sockets.open(m_takenPort) : quint16(0);
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

void DemoServer::wake()
{
    const char byte = 0;
    // A full pipe wakes as well as a written one.
    [[maybe_unused]] const ssize_t written = ::write(m_wakeStart.get(), &byte, 1);
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
    return m_commands.entries();
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
        // The socket of a server that is away is -1, which poll() passes over.
        std::array<pollfd, 2> waitedFor{pollfd{m_sockets.descriptor(), POLLIN, 0}, pollfd{m_wakeEnd.get(), POLLIN, 0}};
        const int ready = ::poll(waitedFor.data(), waitedFor.size(), waitingTime());
        if (ready > 0 && waitedFor[0].revents != 0)
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
    m_limit.clear();
    m_restart = Restart::Done;
}

int DemoServer::waitingTime() const
{
    if (m_options.frozen && m_outgoing.empty() && m_restart == Restart::Done)
        return -1;
    Clock::time_point next = Clock::time_point::max();
    if (m_restart != Restart::Done)
        next = m_restartDue;
    if (!m_options.frozen)
        next = std::min(next, m_nextStep);
    if (!m_outgoing.empty())
        next = std::min(next, m_outgoing.begin()->first);
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(next - Clock::now()).count();
    return static_cast<int>(std::clamp<decltype(left)>(left, 0, 60'000));
}

void DemoServer::receive()
{
    for (int i = 0; i < RequestsAtOnce; ++i) {
        sockaddr_in from{};
        socklen_t length = sizeof from;
        const ssize_t size =
            ::recvfrom(m_sockets.descriptor(), m_buffer.data(), static_cast<std::size_t>(m_buffer.size()), 0,
                       reinterpret_cast<sockaddr *>(&from), &length);
        if (size < 0)
            return;
        answer(QByteArrayView(m_buffer.constData(), static_cast<qsizetype>(size)), from);
    }
}

void DemoServer::answer(QByteArrayView request, const sockaddr_in &from)
{
    const std::optional<QString> text = demoRequestText(request);
    if (!text)
        return;
    const Clock::time_point now = Clock::now();
    const std::lock_guard lock(m_mutex);
    if (m_line.losesRequest() || m_limit.locksOut(from.sin_addr.s_addr, m_line.faults().lockout, now))
        return;
    const QList<QByteArray> parts = reply(*text, from, now);
    if (parts.isEmpty())
        return;
    for (const DemoDatagram &datagram : m_line.carry(parts)) {
        if (m_outgoing.size() < MaximumOutgoing)
            m_outgoing.emplace(now + datagram.after, Outgoing{from, datagram});
    }
}

QList<QByteArray> DemoServer::reply(const QString &request, const sockaddr_in &from, Clock::time_point now)
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
    if (!isSilent && m_limit.throttles(from.sin_addr.s_addr, m_line.faults().throttle, now))
        return {};
    const QString command = request.mid(password.size() + 1);
    m_commands.append(command);
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
