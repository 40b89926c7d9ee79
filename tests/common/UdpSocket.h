#pragma once

#include <QByteArray>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>

/// A socket on 127.0.0.1 for the other end of a line. Reading waits for at most ten seconds.
class UdpSocket
{
public:
    UdpSocket() : m_socket(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof m_address;
        auto *const generic = reinterpret_cast<sockaddr *>(&m_address);
        const timeval patience{10, 0};
        if (::bind(m_socket, generic, length) != 0 || ::getsockname(m_socket, generic, &length) != 0 ||
            ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0)
            qFatal("no socket for a test");
    }
    ~UdpSocket() { ::close(m_socket); }
    Q_DISABLE_COPY_MOVE(UdpSocket)

    quint16 port() const { return ntohs(m_address.sin_port); }

    QByteArray receive(sockaddr_in *from = nullptr) const
    {
        std::array<char, 65536> buffer{};
        sockaddr_in sender{};
        socklen_t length = sizeof sender;
        const ssize_t size =
            ::recvfrom(m_socket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&sender), &length);
        if (from)
            *from = sender;
        return QByteArray(buffer.data(), size < 0 ? 0 : size);
    }
    /// Takes one datagram and tells who sent it.
    sockaddr_in receivedFrom() const
    {
        sockaddr_in from{};
        static_cast<void>(receive(&from));
        return from;
    }
    void send(const QByteArray &datagram, const sockaddr_in &to) const
    {
        static_cast<void>(::sendto(m_socket, datagram.constData(), static_cast<size_t>(datagram.size()), 0,
                                   reinterpret_cast<const sockaddr *>(&to), sizeof to));
    }

private:
    int m_socket;
    sockaddr_in m_address{};
};
