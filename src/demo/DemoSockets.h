#pragma once

#include "DemoFaultyLine.h"

#include <QByteArray>

#include <netinet/in.h>

/// The UDP sockets through which the simulated server, and a stranger, speak. Only wait() waits.
class DemoSockets
{
public:
    /// The stranger's address, 127.0.0.2. Not every system lets it be used.
    static constexpr in_addr_t StrangerAddress = INADDR_LOOPBACK + 1;

    DemoSockets() = default;
    ~DemoSockets() { close(); }
    Q_DISABLE_COPY_MOVE(DemoSockets)

    /// Opens `port` of 127.0.0.1; 0 takes any free one. What was open before is closed.
    /// @return the port; 0 when it cannot be had, and errno says why.
    quint16 open(quint16 port);
    /// Opens the stranger's socket, which open() does not. False when it cannot be had, and errno says why.
    bool openStranger();
    void close();

    /// Waits until there is a request, at most for this time; also when closed.
    void wait(std::chrono::milliseconds most) const;
    /// Takes a request that has come. @return its size; negative when there is none.
    qsizetype receive(QByteArray &buffer, sockaddr_in &from) const;
    /// A datagram that the system cannot take, or whose sender has no socket, is lost, as on any line.
    void send(const DemoDatagram &datagram, const sockaddr_in &to) const;

private:
    int m_server = -1;
    int m_otherPort = -1;
    int m_stranger = -1;
};
