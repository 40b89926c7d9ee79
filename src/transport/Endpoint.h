#pragma once

#include <QString>

/// Where a datagram goes to or comes from: an IPv4 address and a port, in this machine's byte order.
struct Endpoint {
    quint32 address = 0;
    quint16 port = 0;

    bool operator==(const Endpoint &) const = default;

    /// The address as four numbers with dots between them.
    QString addressText() const
    {
        return QStringLiteral("%1.%2.%3.%4")
            .arg(address >> 24)
            .arg(address >> 16 & 0xff)
            .arg(address >> 8 & 0xff)
            .arg(address & 0xff);
    }
};
