#pragma once

#include <QByteArray>
#include <QList>

#include <netinet/in.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// A game server on 127.0.0.1 that does what its script says to each request: sends datagrams, waits, floods. It runs
/// on a thread of its own, which ends with the object.
class ScriptedPeer
{
public:
    struct Step {
        QByteArray datagram;
        std::chrono::milliseconds delay{0}; ///< before the datagram
        int repetitions = 1;                ///< of the delay and the datagram
        const char *from = nullptr;         ///< another address of this machine
    };
    using Answer = QList<Step>;

    /// `script` holds the answer to the first request, the second and so on; later ones get none.
    explicit ScriptedPeer(QList<Answer> script);
    ~ScriptedPeer();
    Q_DISABLE_COPY_MOVE(ScriptedPeer)

    int port() const { return ntohs(m_address.sin_port); }

    /// Waits until `count` requests have come; false when they do not within ten seconds.
    bool waitForRequests(qsizetype count);

    qsizetype requestCount();

    /// Ends the peer and returns all requests that were sent to it, in order.
    QList<QByteArray> requests();

    /// A reply datagram with `payload`.
    static QByteArray framed(const QByteArray &payload);

private:
    void serve(const std::stop_token &stop);
    void deliver(const Step &step, const sockaddr_in &client) const;
    void perform(const Answer &answer, const sockaddr_in &client, const std::stop_token &stop);

    QList<Answer> m_script;
    sockaddr_in m_address{};
    int m_socket = -1;
    std::mutex m_mutex;
    std::condition_variable_any m_changed;
    QList<QByteArray> m_requests;
    std::jthread m_thread;
};
