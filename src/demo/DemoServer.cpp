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
constexpr quint64 LineSeed = 0x9e3779b97f4a7c15; // faults must not follow the chance of the game

bool setNonBlocking(int descriptor)
{
    return ::fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0 && ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0;
}
} // namespace

DemoServer::DemoServer(DemoOptions options)
    : m_options(std::move(options)), m_takenPort(m_options.port), m_game(m_options), m_line(m_options.seed ^ LineSeed),
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
    if (!openWakePipe() || !openSocket()) {
        const int reason = errno;
        m_socket.reset();
        if (error)
            *error = QCoreApplication::translate("DemoServer", "The demo server cannot use port %1: %2")
                         .arg(m_takenPort)
                         .arg(QString::fromStdString(std::generic_category().message(reason)));
        return false;
    }
    m_nextStep = Clock::now() + Step;
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
    m_socket.reset();
    m_otherSocket.reset();
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

bool DemoServer::openSocket()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(m_takenPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    m_socket = DemoDescriptor(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
    m_otherSocket = DemoDescriptor(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    const bool isBound = m_socket.isOpen() && setNonBlocking(m_socket.get()) && m_otherSocket.isOpen() &&
                         setNonBlocking(m_otherSocket.get()) && ::bind(m_socket.get(), generic, length) == 0 &&
                         ::getsockname(m_socket.get(), generic, &length) == 0;
    if (isBound)
        m_port = m_takenPort = ntohs(address.sin_port);
    return isBound;
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
    std::array<pollfd, 2> waitedFor{pollfd{m_socket.get(), POLLIN, 0}, pollfd{m_wakeEnd.get(), POLLIN, 0}};
    while (!m_isStopping) {
        const int ready = ::poll(waitedFor.data(), waitedFor.size(), waitingTime());
        if (ready > 0 && waitedFor[0].revents != 0)
            receive();
        advanceGame();
        sendDue();
    }
}

int DemoServer::waitingTime() const
{
    if (m_options.frozen && m_outgoing.empty())
        return -1;
    Clock::time_point next = Clock::time_point::max();
    if (!m_options.frozen)
        next = m_nextStep;
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
        const ssize_t size = ::recvfrom(m_socket.get(), m_buffer.data(), static_cast<std::size_t>(m_buffer.size()), 0,
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
    const std::lock_guard lock(m_mutex);
    if (m_line.losesRequest())
        return;
    const QList<QByteArray> datagrams = m_line.carry(reply(*text));
    const Clock::time_point due = Clock::now() + m_line.faults().delay;
    for (const QByteArray &datagram : datagrams) {
        if (m_outgoing.size() < MaximumOutgoing)
            m_outgoing.emplace(due, Outgoing{from, datagram, m_line.faults().otherPort});
    }
}

QList<QByteArray> DemoServer::reply(const QString &request)
{
    const QString password = m_game.password();
    if (password.isEmpty())
        return demoReplyDatagrams(QStringLiteral("The server must set 'rcon_password' for clients to use 'rcon'.\n"));
    // The password may hold blanks, so that only knowing it tells where the command begins.
    const bool isRight = request == password || request.startsWith(password + u' ');
    if (!isRight)
        return m_options.refusalText ? demoReplyDatagrams(QStringLiteral("Invalid password.\n"))
                                     : QList<QByteArray>{demoRefusalDatagram()};
    const QString command = request.mid(password.size() + 1);
    m_commands.append(command);
    if (m_line.faults().silent)
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
        // A datagram that the system cannot take is lost, as on any line.
        [[maybe_unused]] const ssize_t sent =
            ::sendto(next.fromOtherPort ? m_otherSocket.get() : m_socket.get(), next.bytes.constData(),
                     static_cast<std::size_t>(next.bytes.size()), 0, reinterpret_cast<const sockaddr *>(&next.to),
                     sizeof next.to);
        m_outgoing.erase(m_outgoing.begin());
    }
}
