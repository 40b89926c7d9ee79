#include "DemoSockets.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace
{
DemoDescriptor openSocket()
{
    DemoDescriptor made(::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP));
    if (!made.isOpen() || ::fcntl(made.get(), F_SETFL, O_NONBLOCK) != 0 ||
        ::fcntl(made.get(), F_SETFD, FD_CLOEXEC) != 0)
        return {};
    return made;
}

/// @return the port; 0 when it cannot be had.
quint16 bindTo(const DemoDescriptor &socket, in_addr_t host, quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(host);
    socklen_t length = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    const bool isBound =
        ::bind(socket.get(), generic, length) == 0 && ::getsockname(socket.get(), generic, &length) == 0;
    return isBound ? ntohs(address.sin_port) : quint16(0);
}
} // namespace

quint16 DemoSockets::open(quint16 port)
{
    close();
    m_server = openSocket();
    m_otherPort = openSocket();
    if (!m_server.isOpen() || !m_otherPort.isOpen())
        return 0;
    return bindTo(m_server, INADDR_LOOPBACK, port);
}

bool DemoSockets::openStranger()
{
    DemoDescriptor stranger = openSocket();
    // Without an address of its own the stranger would answer from that of the server.
    if (!stranger.isOpen() || bindTo(stranger, StrangerAddress, 0) == 0)
        return false;
    m_stranger = std::move(stranger);
    return true;
}

void DemoSockets::close()
{
    m_server.reset();
    m_otherPort.reset();
    m_stranger.reset();
}

void DemoSockets::send(const DemoDatagram &datagram, const sockaddr_in &to) const
{
    int from = m_server.get();
    if (datagram.sender == DemoDatagram::Sender::OtherPort)
        from = m_otherPort.get();
    else if (datagram.sender == DemoDatagram::Sender::Stranger)
        from = m_stranger.get();
    [[maybe_unused]] const ssize_t sent =
        ::sendto(from, datagram.bytes.constData(), static_cast<std::size_t>(datagram.bytes.size()), 0,
                 reinterpret_cast<const sockaddr *>(&to), sizeof to);
}
