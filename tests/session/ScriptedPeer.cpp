#include "ScriptedPeer.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

using namespace std::chrono_literals;

ScriptedPeer::ScriptedPeer(QList<Answer> script) : m_script(std::move(script))
{
    m_socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    m_address.sin_family = AF_INET;
    m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof m_address;
    if (::bind(m_socket, reinterpret_cast<const sockaddr *>(&m_address), length) != 0 ||
        ::getsockname(m_socket, reinterpret_cast<sockaddr *>(&m_address), &length) != 0)
        qFatal("no socket for the scripted peer");
    const timeval patience{0, 20'000};
    ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    m_thread = std::jthread([this](const std::stop_token &stop) { serve(stop); });
}

ScriptedPeer::~ScriptedPeer()
{
    requests();
    ::close(m_socket);
}

bool ScriptedPeer::waitForRequests(qsizetype count)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, 10s, [this, count] { return m_requests.size() >= count; });
}

qsizetype ScriptedPeer::requestCount()
{
    const std::lock_guard lock(m_mutex);
    return m_requests.size();
}

QList<QByteArray> ScriptedPeer::requests()
{
    m_thread.request_stop();
    if (m_thread.joinable())
        m_thread.join();
    return m_requests;
}

QByteArray ScriptedPeer::framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

void ScriptedPeer::serve(const std::stop_token &stop)
{
    std::array<char, 65536> buffer;
    while (true) {
        sockaddr_in client{};
        socklen_t clientLength = sizeof client;
        const ssize_t length =
            ::recvfrom(m_socket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&client), &clientLength);
        if (length < 0 && stop.stop_requested())
            return;
        if (length < 0)
            continue;
        {
            const std::lock_guard lock(m_mutex);
            m_requests.append(QByteArray(buffer.data(), length));
            m_changed.notify_all();
        }
        perform(m_script.value(m_requests.size() - 1), client, stop);
    }
}

void ScriptedPeer::perform(const Answer &answer, const sockaddr_in &client, const std::stop_token &stop)
{
    for (const Step &step : answer) {
        for (int i = 0; i < step.repetitions; ++i) {
            if (step.delay > 0ms) {
                std::unique_lock lock(m_mutex);
                m_changed.wait_for(lock, stop, step.delay, [] { return false; });
            }
            if (stop.stop_requested())
                return;
            deliver(step, client);
        }
    }
}

void ScriptedPeer::deliver(const Step &step, const sockaddr_in &client) const
{
    int socket = m_socket;
    if (step.from != nullptr) {
        sockaddr_in address = m_address;
        ::inet_pton(AF_INET, step.from, &address.sin_addr);
        socket = ::socket(AF_INET, SOCK_DGRAM, 0);
        if (::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            qFatal("no socket at %s", step.from);
    }
    ::sendto(socket, step.datagram.constData(), size_t(step.datagram.size()), 0,
             reinterpret_cast<const sockaddr *>(&client), sizeof client);
    if (socket != m_socket)
        ::close(socket);
}
