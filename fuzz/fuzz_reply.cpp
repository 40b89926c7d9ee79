#include "Fuzzing.h"

#include "DatagramPacket.h"

#include <sys/socket.h>
#include <sys/types.h>

#include <array>

namespace
{

/// A packet whose server is this program: what is sent here, it receives.
class Loop
{
public:
    Loop() : m_packet(DatagramPacket::initWithHost(QStringLiteral("127.0.0.1"), 1))
    {
        std::array<int, 2> ends{};
        require(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()) == 0, "there are sockets");
        m_packet->setSocket(ends[0]);
        m_server = ends[1];
    }

    void send(const QByteArray &datagram) const
    {
        const ssize_t sent =
            ::send(m_server, datagram.constData(), static_cast<std::size_t>(datagram.size()), MSG_DONTWAIT);
        require(sent == datagram.size(), "a socket takes a few datagrams");
    }

    void drain() const
    {
        char byte = 0;
        while (::recv(m_packet->socket(), &byte, 1, MSG_DONTWAIT) >= 0) {
        }
    }

    DatagramPacket &packet() const { return *m_packet; }

private:
    std::unique_ptr<DatagramPacket> m_packet;
    int m_server = -1;
};

struct Outcome {
    RConResult result = RConResultNullReply;
    QString text;
    quint32 count = 0;

    bool operator==(const Outcome &) const = default;
};

} // namespace

static constexpr QLatin1String before("before");

/// What the datagrams come to, one after the other; the last one is empty.
static Outcome expected(const QList<QByteArray> &datagrams)
{
    constexpr qsizetype largest = 1500;
    Outcome outcome{RConResultNullReply, QStringLiteral("The server replied with an empty packet."), 0};
    QString gathered;
    for (const QByteArray &datagram : datagrams) {
        if (datagram.isEmpty())
            break;
        QString text = outcome.count == 0 ? QString(before) : QString();
        const QByteArray cut = datagram.left(largest);
        outcome.result = DatagramPacket::getString(&text, cut.constData(), static_cast<std::size_t>(cut.size()));
        if (outcome.result != RConResultSuccess)
            return {outcome.result, text, 0};
        outcome.text = gathered += text;
        ++outcome.count;
    }
    return outcome;
}

static Outcome received(const Loop &loop, const QList<QByteArray> &datagrams, const std::stop_token &stop)
{
    for (const QByteArray &datagram : datagrams)
        loop.send(datagram);
    Outcome outcome{RConResultSuccess, before, 0};
    outcome.result = loop.packet().receiveMulti(&outcome.text, &outcome.count, stop);
    loop.drain();
    return outcome;
}

/// The input is a row of datagrams with the byte 0xfe between them.
int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr qsizetype mostDatagrams = 16;
    static const Loop loop;
    QList<QByteArray> datagrams = fuzzedBytes(data, size).split('\xfe').mid(0, mostDatagrams);
    datagrams.append(QByteArray()); // otherwise silence, which takes its time, would end the reply
    const Outcome outcome = expected(datagrams);
    require(received(loop, datagrams, {}) == outcome, "a reply is the texts of its datagrams");

    std::stop_source stop;
    stop.request_stop();
    const Outcome stopped = received(loop, datagrams.mid(0, 1), stop.get_token());
    if (outcome.result == RConResultSuccess)
        require(stopped.result == RConResultError && stopped.count == 0, "a reply that is called off is an error");
    return 0;
}
