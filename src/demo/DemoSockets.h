#pragma once

#include "DemoDatagram.h"
#include "DemoDescriptor.h"

#include <netinet/in.h>

/// The UDP sockets through which the simulated server, and a stranger, speak. None of them ever waits.
class DemoSockets
{
public:
    /// The stranger's address, 127.0.0.2. Not every system lets it be used.
    static constexpr in_addr_t StrangerAddress = INADDR_LOOPBACK + 1;

    /// Opens `port` of 127.0.0.1; 0 takes any free one. What was open before is closed.
    /// @return the port; 0 when it cannot be had, and errno says why.
    quint16 open(quint16 port);
    /// Opens the stranger's socket, which open() does not. False when it cannot be had, and errno says why.
    bool openStranger();
    void close();

    /// Readable when there is a request; -1 when closed.
    int descriptor() const { return m_server.get(); }
    /// A datagram that the system cannot take, or whose sender has no socket, is lost, as on any line.
    void send(const DemoDatagram &datagram, const sockaddr_in &to) const;

private:
    DemoDescriptor m_server;
    DemoDescriptor m_otherPort;
    DemoDescriptor m_stranger;
};
