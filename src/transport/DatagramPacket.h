#pragma once

#include "RConResult.h"

#include <QString>

#include <netinet/in.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <stop_token>

/// Why no DatagramPacket could be made.
struct DatagramPacketError {
    QString domain;
    int code = 0;
    QString localizedDescription;
};

/// One UDP socket aimed at one game server: sends framed requests and reads framed replies. Every call blocks its
/// thread; one object is used by one thread at a time. Out-parameters may be null.
class DatagramPacket
{
    class Key
    {
        friend class DatagramPacket;
        Key() = default;
    };

public:
    /// Only a dotted IPv4 address is accepted, names are not resolved; otherwise null, and `error` says why.
    /// A socket that cannot be created goes to the system log, and every later send and read fails.
    static std::unique_ptr<DatagramPacket> initWithHost(const QString &host, quint16 port,
                                                        DatagramPacketError *error = nullptr);

    DatagramPacket(Key, const sockaddr_in &address);
    ~DatagramPacket();
    Q_DISABLE_COPY_MOVE(DatagramPacket)

    /// Closes the socket; again does nothing.
    void close();

    /// The descriptor, -1 when there is none.
    int socket() const { return m_socket; }
    /// Takes ownership of `socket` and closes the one before.
    void setSocket(int socket);

    /// 0 before the first send, raised by every send and never above 2. It selects the time-out of the sends and reads
    /// that follow: 250, 500 or 750 ms.
    unsigned sendAttemptNum() const { return m_sendAttemptNum; }
    void setSendAttemptNum(unsigned sendAttemptNum);

    /// Sends `requestText` in Latin-1 with its frame; a text that Latin-1 cannot hold contributes no bytes. True when
    /// the whole datagram was sent; a failure goes to the system log.
    bool send(const QString &requestText);

    /// Reads one datagram. `reply` becomes its cleaned text, on failure the reason; it is left as it was when the
    /// payload says that the password was refused.
    RConResult receive(QString *reply);

    /// Reads datagrams until none has come for one time-out (or an empty one comes) and joins their texts. A reply of
    /// more than 65,536 datagrams or 16 Mi characters ends with RConResultError, and so does a `stop` seen after a
    /// datagram.
    /// @param packetsReceived  the number of datagrams, written on success only.
    RConResult receiveMulti(QString *reply, quint32 *packetsReceived = nullptr, const std::stop_token &stop = {});

    /// Success, RConResultInvalidPassword or RConResultInvalidPacket, by the frame alone.
    static RConResult validateDataPacket(const char *packet, std::size_t length);
    /// The cleaned text of a reply datagram, with the meaning of receive().
    static RConResult getString(QString *reply, const char *packet, std::size_t length);
    /// The number of bytes from offset `startingFrom` up to the first zero byte or the end; 0 beyond the end.
    static std::size_t getDataPacketPayloadLength(const char *packet, std::size_t length, std::size_t startingFrom);

private:
    std::chrono::microseconds timeout() const;
    bool setTimeout(int option, std::chrono::microseconds timeout) const;
    /// Retries `call(isBounded)` when a signal interrupts it, within one time-out in total. Returns its result, errno
    /// set.
    template <typename Call>
    ssize_t withinTimeout(int option, Call call) const;
    ssize_t readDatagram(std::span<char> buffer) const;

    sockaddr_in m_address;
    int m_socket = -1;
    unsigned m_sendAttemptNum = 0;
};
