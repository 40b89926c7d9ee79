#pragma once

#include "DemoDescriptor.h"

#include <QByteArray>

#include <chrono>
#include <optional>

/// A bare UDP socket that talks to a server on loopback.
class DemoClient
{
public:
    explicit DemoClient(quint16 port);

    static QByteArray request(const QByteArray &text);

    void send(const QByteArray &datagram) const;
    void sendText(const QByteArray &text) const { send(request(text)); }
    /// @return nothing when no datagram has come for a while.
    std::optional<QByteArray> receive(std::chrono::milliseconds patience = std::chrono::seconds(10)) const;
    /// Gathers datagrams until their texts end with `end`.
    /// @return the texts one after the other; what has come so far when no more comes.
    QByteArray receiveUntil(const QByteArray &end, int *datagrams = nullptr) const;

private:
    DemoDescriptor m_socket;
};
