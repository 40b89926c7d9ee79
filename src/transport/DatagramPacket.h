#pragma once

#include "Endpoint.h"
#include "RConResult.h"

#include <QByteArrayView>
#include <QString>

#include <cstddef>
#include <memory>
#include <span>

/// Why no DatagramPacket could be made.
struct DatagramPacketError {
    QString domain;
    int code = 0;
    QString localizedDescription;
};

/// What a look at the socket found.
struct ReceivedDatagram {
    enum class Kind { Nothing, Datagram, Failure };

    Kind kind = Kind::Nothing;
    std::size_t length = 0; ///< of the datagram in the buffer
    Endpoint from;
    int errorNumber = 0; ///< why the socket cannot be read
};

/// One UDP socket aimed at one game server: sends framed requests and takes what has come. No call waits; one object is
/// used by one thread at a time. Out-parameters may be null.
class DatagramPacket
{
    class Key
    {
        friend class DatagramPacket;
        Key() = default;
    };

public:
    /// No reply is longer; what is, is cut.
    static constexpr std::size_t mostBytes = 1500;

    /// Only a dotted IPv4 address is accepted, names are not resolved; otherwise null, and `error` says why.
    /// A socket that cannot be created goes to the system log, and every later send and read fails.
    static std::unique_ptr<DatagramPacket> initWithHost(const QString &host, quint16 port,
                                                        DatagramPacketError *error = nullptr);

    DatagramPacket(Key, const Endpoint &server);
    ~DatagramPacket();
    Q_DISABLE_COPY_MOVE(DatagramPacket)

    /// Closes the socket; again does nothing.
    void close();

    /// The descriptor, -1 when there is none. Readable when receive() has something to give.
    int socket() const { return m_socket; }
    Endpoint server() const { return m_server; }

    /// Sends `requestText` in Latin-1 with its frame; a text that Latin-1 cannot hold contributes no bytes. True when
    /// the whole datagram was sent; a failure goes to the system log.
    bool send(const QString &requestText);

    /// Takes one datagram that has come, from whomever, into `buffer`; what does not fit is cut off.
    ReceivedDatagram receive(std::span<char> buffer);

    /// Success, RConResultInvalidPassword or RConResultInvalidPacket, by the frame alone.
    static RConResult validateDataPacket(QByteArrayView packet);
    /// The cleaned text of a reply datagram. `reply` becomes the reason of a failure; it is left as it was when the
    /// payload says that the password was refused.
    static RConResult getString(QString *reply, QByteArrayView packet);
    /// The number of bytes from offset `startingFrom` up to the first zero byte or the end; 0 beyond the end.
    static qsizetype getDataPacketPayloadLength(QByteArrayView packet, qsizetype startingFrom);

private:
    Endpoint m_server;
    int m_socket = -1;
};
