#pragma once

#include <QByteArray>

#include <chrono>

/// A datagram on its way to a client.
struct DemoDatagram {
    enum class Sender {
        Server,
        OtherPort, ///< of the server's address
        Stranger   ///< at another address
    };

    QByteArray bytes;
    Sender sender = Sender::Server;
    std::chrono::milliseconds after{0}; ///< how long after the request it arrives
};
