#pragma once

#include <QByteArray>
#include <QList>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

/// Answers every request with the same long reply, over as many datagrams as it takes.
class LongReplyServer
{
public:
    explicit LongReplyServer(const QByteArray &reply)
    {
        constexpr qsizetype largestPart = 1200;
        for (qsizetype place = 0; place < reply.size(); place += largestPart)
            m_datagrams.append("\xff\xff\xff\xff\x01print\n" + reply.mid(place, largestPart));
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
    ~LongReplyServer()
    {
        m_isStopping = true;
        m_thread.join();
        close(m_socket);
    }
    LongReplyServer(const LongReplyServer &) = delete;
    LongReplyServer &operator=(const LongReplyServer &) = delete;

    quint16 port() const { return m_port; }

private:
    void run()
    {
        char request[2048];
        while (!m_isStopping) {
            sockaddr_in from{};
            socklen_t length = sizeof from;
            auto *generic = reinterpret_cast<sockaddr *>(&from);
            if (recvfrom(m_socket, request, sizeof request, 0, generic, &length) <= 0)
                continue;
            for (const QByteArray &part : std::as_const(m_datagrams)) {
                if (sendto(m_socket, part.constData(), static_cast<std::size_t>(part.size()), 0, generic, length) < 0)
                    qFatal("the server cannot answer");
                std::this_thread::sleep_for(std::chrono::microseconds(50)); // what a socket's buffer holds is limited
            }
        }
    }

    QList<QByteArray> m_datagrams;
    int m_socket = socket(AF_INET, SOCK_DGRAM, 0);
    quint16 m_port = 0;
    std::atomic<bool> m_isStopping = false;
    std::thread m_thread;
};
