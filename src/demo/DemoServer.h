#pragma once

#include "DemoFaultyLine.h"
#include "DemoGame.h"
#include "DemoOptions.h"
#include "DemoRateLimit.h"
#include "DemoSockets.h"

#include <QStringList>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

/// The simulated game server on a UDP port of 127.0.0.1. It runs on a thread of its own; every function may be called
/// from any thread, but start() and stop() not from two at once. It restarts by itself where its options say so: the
/// port is then closed for a while, and the game that comes after is a new one.
class DemoServer
{
public:
    explicit DemoServer(DemoOptions options);
    ~DemoServer();
    DemoServer(const DemoServer &) = delete;
    DemoServer &operator=(const DemoServer &) = delete;

    /// Opens the port and begins to answer; started again it takes the port that it had. The game goes on where it
    /// stood. Does not block. Not to be called while it runs.
    /// @param error  why it failed, for the user; may be null.
    bool start(QString *error = nullptr);
    /// Ends within 50 ms, whatever is on its way. Harmless when not started.
    void stop();

    /// The port in use; 0 when not started.
    quint16 port() const { return m_port; }
    /// The password that is asked for now.
    QString password() const;
    void setFaults(DemoFaults faults);
    /// The commands that came with the right password, oldest first, at most 20,000, long ones cut; those that a silent
    /// server did not carry out are among them, those that were ignored for their haste are not.
    QStringList commandsSeen() const;
    /// The same, and forgets them.
    QStringList takeCommands();
    /// The value of a server variable; empty for an unknown name.
    QString variable(const QString &name) const;
    int playerCount() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Outgoing {
        sockaddr_in to;
        DemoDatagram datagram;
    };
    enum class Restart { Pending, Away, Done };

    bool openSockets(QString *error);
    void run();
    void restartWhenDue();
    void beginAnew();
    std::chrono::milliseconds waitingTime() const;
    void receive();
    void answer(QByteArrayView request, const sockaddr_in &from);
    QList<QByteArray> reply(const QString &request, Clock::time_point now);
    void advanceGame();
    void sendDue();

    const DemoOptions m_options;
    DemoSockets m_sockets;
    std::atomic<quint16> m_port = 0;
    quint16 m_takenPort; ///< the wanted one, or the one that was free at the first start

    mutable std::mutex m_mutex; ///< guards the next four
    DemoGame m_game;
    DemoFaultyLine m_line;
    DemoRateLimit m_limit;
    QStringList m_commands;

    // Used by the server's thread only while there is one.
    std::multimap<Clock::time_point, Outgoing> m_outgoing;
    Clock::time_point m_nextStep;
    Clock::time_point m_restartDue; ///< when to go away, or to be back
    Restart m_restart;
    QByteArray m_buffer;

    std::atomic<bool> m_isStopping = false;
    std::thread m_thread;
};
