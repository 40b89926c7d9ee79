#include "DemoSockets.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace
{
/// @return -1 when there is none to be had.
int openSocket()
{
    const int made = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    // Of an open descriptor these do not fail.
    [[maybe_unused]] const bool isSet =
        ::fcntl(made, F_SETFL, O_NONBLOCK) == 0 && ::fcntl(made, F_SETFD, FD_CLOEXEC) == 0;
    return made;
}

/// @return the port; 0 when it cannot be had.
quint16 bindTo(int socket, in_addr_t host, quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(host);
    socklen_t length = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    const bool isBound = ::bind(socket, generic, length) == 0 && ::getsockname(socket, generic, &length) == 0;
    return isBound ? ntohs(address.sin_port) : quint16(0);
}
} // namespace

quint16 DemoSockets::open(quint16 port)
{
    close();
    m_server = openSocket();
    m_otherPort = openSocket();
    return m_otherPort < 0 ? quint16(0) : bindTo(m_server, INADDR_LOOPBACK, port);
}

bool DemoSockets::openStranger()
{
    m_stranger = openSocket();
    if (bindTo(m_stranger, StrangerAddress, 0) != 0)
        return true;
    const int reason = errno;
    ::close(std::exchange(m_stranger, -1)); // without its address it would speak as the server itself
    errno = reason;
    return false;
}

void DemoSockets::close()
{
    for (int *socket : {&m_server, &m_otherPort, &m_stranger}) {
        if (*socket >= 0)
            ::close(std::exchange(*socket, -1));
    }
}

void DemoSockets::wait(std::chrono::milliseconds most) const
{
    pollfd waitedFor{m_server, POLLIN, 0}; // poll() passes over -1
    [[maybe_unused]] const int ready = ::poll(&waitedFor, 1, static_cast<int>(most.count()));
}

qsizetype DemoSockets::receive(QByteArray &buffer, sockaddr_in &from) const
{
    socklen_t length = sizeof from;
    return ::recvfrom(m_server, buffer.data(), static_cast<std::size_t>(buffer.size()), 0,
                      reinterpret_cast<sockaddr *>(&from), &length);
}

void DemoSockets::send(const DemoDatagram &datagram, const sockaddr_in &to) const
{
    int from = m_server;
    if (datagram.sender == DemoDatagram::Sender::OtherPort)
        from = m_otherPort;
    else if (datagram.sender == DemoDatagram::Sender::Stranger)
        from = m_stranger;
    [[maybe_unused]] const ssize_t sent =
        ::sendto(from, datagram.bytes.constData(), static_cast<std::size_t>(datagram.bytes.size()), 0,
                 reinterpret_cast<const sockaddr *>(&to), sizeof to);
}
