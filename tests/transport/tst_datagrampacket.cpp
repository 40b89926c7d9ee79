#include "DataColumns.h"
#include "DatagramPacket.h"
#include "UdpSocket.h"

#include <QTest>

#include <poll.h>

#include <array>
#include <cerrno>

namespace
{

const QString before = QStringLiteral("before");

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QByteArray framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

std::unique_ptr<DatagramPacket> packetTo(const UdpSocket &peer)
{
    return DatagramPacket::initWithHost("127.0.0.1", peer.port());
}

bool isReadable(int socket)
{
    pollfd waited{socket, POLLIN, 0};
    return ::poll(&waited, 1, 0) == 1;
}

} // namespace

class DatagramPacketTest : public QObject
{
    Q_OBJECT
private slots:
    void frames_data()
    {
        const auto row = dataColumns<QByteArray, unsigned, QString>("datagram", "result", "text");
        const QString invalid = "An invalid packet was returned from the server.";
        row("refusal", bytes("ffffffff0a"), RConResultInvalidPassword, "Invalid password.");
        row("password refused", framed("Invalid password.\n"), RConResultInvalidPassword, before);
        row("no password set", framed("The server must set 'rcon_password' for clients to use 'rcon'.\n"),
            RConResultInvalidPassword, before);
        row("refusal and one more byte", bytes("ffffffff0a00"), RConResultInvalidPacket, invalid);
        row("marker wrong", bytes("ffffffff0041424344454647"), RConResultInvalidPacket, invalid);
        row("ten bytes", bytes("ffffffff014142434445"), RConResultSuccess, "");
        row("ends at the first zero byte", framed(QByteArray("abc\0def", 7)), RConResultSuccess, "abc");
        row("high bytes", framed(bytes("5a6feb80ff")), RConResultSuccess, QString::fromLatin1("Zo\xeb\x80\xff"));
        row("one and two backslashes before n", framed("a\\nb\\\\nc"), RConResultSuccess, "a\nb\nc");
        row("refusal without newline", framed("Invalid password."), RConResultSuccess, "Invalid password.");
    }
    void frames()
    {
        QFETCH(QByteArray, datagram);
        QFETCH(unsigned, result);
        QString text = before;
        QCOMPARE(unsigned(DatagramPacket::getString(&text, datagram)), result);
        QTEST(text, "text");
        QCOMPARE(unsigned(DatagramPacket::getString(nullptr, datagram)), result);
    }

    void requestsAreLatin1()
    {
        const UdpSocket peer;
        const auto packet = packetTo(peer);
        QVERIFY(packet->send(QString::fromUtf8("Zoë")));
        QCOMPARE(peer.receive(), bytes("ffffffff005a6feb00"));
    }

    void takesWhatHasCome()
    {
        const UdpSocket peer;
        const UdpSocket other;
        const auto packet = packetTo(peer);
        std::array<char, DatagramPacket::mostBytes> buffer{};
        QVERIFY(packet->send("status"));
        const sockaddr_in client = peer.receivedFrom();
        peer.send(QByteArray(9000, 'x'), client);
        other.send("", client);
        for (const auto &[length, port] : {std::pair(buffer.size(), peer.port()), {0, other.port()}}) {
            QVERIFY(QTest::qWaitFor([&packet] { return isReadable(packet->socket()); }));
            const ReceivedDatagram received = packet->receive(buffer);
            QCOMPARE(received.kind, ReceivedDatagram::Kind::Datagram);
            QCOMPARE(received.length, length);
            QCOMPARE(received.from, (Endpoint{0x7f000001, port}));
        }
        QCOMPARE(packet->receive(buffer).kind, ReceivedDatagram::Kind::Nothing);

        packet->close();
        const ReceivedDatagram received = packet->receive(buffer);
        QCOMPARE(received.kind, ReceivedDatagram::Kind::Failure);
        QCOMPARE(received.errorNumber, EBADF);
        QTest::ignoreMessage(QtWarningMsg, "errno=9 (Bad file descriptor)");
        QVERIFY(!packet->send("status"));
    }
};

QTEST_GUILESS_MAIN(DatagramPacketTest)
#include "tst_datagrampacket.moc"
