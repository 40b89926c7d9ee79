#pragma once

#include "UdpSocket.h"

#include <QList>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

/// Answers every request that comes to a port of its own with the texts that a function gives, one datagram for each.
/// The function is called on a thread of its own.
class LoopbackServer
{
public:
    using Answers = std::function<QList<QByteArray>(const QByteArray &request)>;

    explicit LoopbackServer(Answers answers) : m_answers(std::move(answers)), m_thread([this] { run(); }) {}
    ~LoopbackServer()
    {
        m_isStopping = true;
        sockaddr_in itself{};
        itself.sin_family = AF_INET;
        itself.sin_port = htons(m_socket.port());
        itself.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_socket.send("wakes it", itself);
        m_thread.join();
    }
    Q_DISABLE_COPY_MOVE(LoopbackServer)

    quint16 port() const { return m_socket.port(); }

private:
    void run()
    {
        while (!m_isStopping) {
            sockaddr_in from{};
            const QByteArray request = m_socket.receive(&from);
            if (request.isEmpty() || m_isStopping)
                continue;
            for (const QByteArray &text : m_answers(request)) {
                m_socket.send("\xff\xff\xff\xff\x01print\n" + text, from);
                std::this_thread::sleep_for(std::chrono::microseconds(50)); // what a socket's buffer holds is limited
            }
        }
    }

    Answers m_answers;
    UdpSocket m_socket;
    std::atomic<bool> m_isStopping = false;
    std::thread m_thread;
};
