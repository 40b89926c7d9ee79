#include "ScriptedPeer.h"

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

using namespace std::chrono_literals;

namespace
{

// Sent by the peer to itself: what arrives before it was sent before it.
const QByteArray mark = "mark";

} // namespace

ScriptedPeer::ScriptedPeer(QList<Answer> script) : m_script(std::move(script))
{
    m_socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    m_address.sin_family = AF_INET;
    m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof m_address;
    if (::bind(m_socket, reinterpret_cast<const sockaddr *>(&m_address), length) != 0 ||
        ::getsockname(m_socket, reinterpret_cast<sockaddr *>(&m_address), &length) != 0)
        qFatal("no socket for the scripted peer");
    m_thread = std::jthread([this](const std::stop_token &stop) { serve(stop); });
}

ScriptedPeer::~ScriptedPeer()
{
    m_thread.request_stop();
    sendToSelf(mark);
    m_thread.join();
    ::close(m_socket);
}

bool ScriptedPeer::waitForRequests(qsizetype count)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, 10s, [this, count] { return m_requests.size() >= count; });
}

QList<QByteArray> ScriptedPeer::requests()
{
    std::unique_lock lock(m_mutex);
    const int marks = m_marks;
    sendToSelf(mark);
    m_changed.wait_for(lock, 10s, [this, marks] { return m_marks > marks; });
    return m_requests;
}

QByteArray ScriptedPeer::framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

void ScriptedPeer::serve(const std::stop_token &stop)
{
    std::array<char, 65536> buffer;
    while (!stop.stop_requested()) {
        sockaddr_in client{};
        socklen_t clientLength = sizeof client;
        const ssize_t length =
            ::recvfrom(m_socket, buffer.data(), buffer.size(), 0, reinterpret_cast<sockaddr *>(&client), &clientLength);
        if (length < 0 && errno != EINTR)
            return;
        if (length < 0)
            continue;
        const QByteArray request(buffer.data(), length);
        qsizetype number = -1;
        {
            const std::lock_guard lock(m_mutex);
            if (request == mark) {
                ++m_marks;
            } else {
                number = m_requests.size();
                m_requests.append(request);
            }
            m_changed.notify_all();
        }
        if (number >= 0)
            perform(m_script.value(number), client, stop);
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
            ::sendto(m_socket, step.datagram.constData(), size_t(step.datagram.size()), 0,
                     reinterpret_cast<const sockaddr *>(&client), sizeof client);
        }
    }
}

void ScriptedPeer::sendToSelf(const QByteArray &datagram) const
{
    ::sendto(m_socket, datagram.constData(), size_t(datagram.size()), 0, reinterpret_cast<const sockaddr *>(&m_address),
             sizeof m_address);
}
