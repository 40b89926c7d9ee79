#pragma once

#include <QByteArray>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>

/// Hands every request that comes to a port of its own to a function, on a thread of its own.
class LoopbackServer
{
public:
    using Handler = std::function<void(const QByteArray &request)>;

    explicit LoopbackServer(Handler handler) : m_handler(std::move(handler))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto *generic = reinterpret_cast<sockaddr *>(&address);
        const timeval wait{0, 50'000};
        if (bind(m_socket, generic, length) != 0 || getsockname(m_socket, generic, &length) != 0 ||
            setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait) != 0)
            qFatal("no port for the server");
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { run(); });
    }
    ~LoopbackServer()
    {
        m_isStopping = true;
        m_thread.join();
        close(m_socket);
    }
    LoopbackServer(const LoopbackServer &) = delete;
    LoopbackServer &operator=(const LoopbackServer &) = delete;

    quint16 port() const { return m_port; }

    /// Sends to where the request came from. To be called by the handler only.
    void answer(const QByteArray &datagram)
    {
        if (sendto(m_socket, datagram.constData(), static_cast<std::size_t>(datagram.size()), 0,
                   reinterpret_cast<const sockaddr *>(&m_from), sizeof m_from) < 0)
            qFatal("the server cannot answer");
    }

private:
    void run()
    {
        char request[2048];
        while (!m_isStopping) {
            socklen_t length = sizeof m_from;
            const ssize_t size =
                recvfrom(m_socket, request, sizeof request, 0, reinterpret_cast<sockaddr *>(&m_from), &length);
            if (size > 0)
                m_handler(QByteArray(request, size));
        }
    }

    Handler m_handler;
    sockaddr_in m_from{};
    int m_socket = socket(AF_INET, SOCK_DGRAM, 0);
    quint16 m_port = 0;
    std::atomic<bool> m_isStopping = false;
    std::thread m_thread;
};
