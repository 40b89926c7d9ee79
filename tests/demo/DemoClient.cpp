#include "DemoClient.h"

#include <poll.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

DemoClient::DemoClient(quint16 port) : m_socket(::socket(AF_INET, SOCK_DGRAM, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("no socket");
}

QByteArray DemoClient::request(const QByteArray &text)
{
    return QByteArray(4, '\xff').append('\0').append(text).append('\0');
}

void DemoClient::send(const QByteArray &datagram) const
{
    const ssize_t sent = ::send(m_socket.get(), datagram.constData(), static_cast<std::size_t>(datagram.size()), 0);
    if (sent != datagram.size())
        qWarning("sent %lld of %lld bytes", static_cast<long long>(sent), static_cast<long long>(datagram.size()));
}

std::optional<QByteArray> DemoClient::receive(std::chrono::milliseconds patience) const
{
    pollfd waitedFor{m_socket.get(), POLLIN, 0};
    if (::poll(&waitedFor, 1, static_cast<int>(patience.count())) != 1)
        return std::nullopt;
    QByteArray bytes(65'536, Qt::Uninitialized);
    const ssize_t size = ::recv(m_socket.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    if (size < 0)
        return std::nullopt;
    return bytes.first(size);
}

QByteArray DemoClient::receiveUntil(const QByteArray &end, int *datagrams) const
{
    QByteArray text;
    int count = 0;
    while (!text.endsWith(end)) {
        const std::optional<QByteArray> datagram = receive();
        if (!datagram)
            break;
        text += datagram->sliced(11).chopped(1);
        ++count;
    }
    if (datagrams)
        *datagrams = count;
    return text;
}
