#include "DatagramPacket.h"
#include "ScriptedPeer.h"

#include <QElapsedTimer>
#include <QTest>

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <thread>

using namespace std::chrono_literals;

namespace
{

const QString before = QStringLiteral("before");

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

std::unique_ptr<DatagramPacket> packetTo(const ScriptedPeer &peer)
{
    return DatagramPacket::initWithHost("127.0.0.1", quint16(peer.port()));
}

/// A connected socket from which `sent` can be read and then the reset of its peer.
int socketWithReset(const QByteArray &sent)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0 || ::write(ends[0], "unread", 6) != 6 ||
        ::write(ends[1], sent.constData(), size_t(sent.size())) != sent.size())
        qFatal("no pair of sockets");
    ::close(ends[1]);
    return ends[0];
}

} // namespace

class DatagramPacketTest : public QObject
{
    Q_OBJECT

private slots:
    void hosts_data();
    void hosts();
    void requests_data();
    void requests();
    void timeOuts();
    void reset();
    void closedSocket();
    void single_data();
    void single();
    void gathering_data();
    void gathering();
    void longReply_data();
    void longReply();
};

void DatagramPacketTest::hosts_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("dotted") << "127.0.0.1" << true;
    QTest::newRow("name") << "localhost" << false;
    QTest::newRow("three numbers") << "10.0.1" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("hidden rest") << QString::fromLatin1("127.0.0.1\0.example", 18) << false;
}

void DatagramPacketTest::hosts()
{
    QFETCH(QString, host);
    QFETCH(bool, isAccepted);
    DatagramPacketError error{"untouched", 7, "untouched"};
    const auto packet = DatagramPacket::initWithHost(host, 1, &error);
    QCOMPARE(packet != nullptr, isAccepted);
    QCOMPARE(DatagramPacket::initWithHost(host, 1) != nullptr, isAccepted);
    QCOMPARE(error.domain, QString(isAccepted ? "untouched" : "DatagramPacketDomain"));
    QCOMPARE(error.code, isAccepted ? 7 : 0);
    QCOMPARE(error.localizedDescription, QString(isAccepted ? "untouched" : "No such host is known."));
}

void DatagramPacketTest::requests_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("datagram");
    QTest::newRow("plain") << "pw say hi" << bytes("ffffffff00") + "pw say hi" + bytes("00");
    QTest::newRow("Latin-1") << QString::fromUtf8("Zoë") << bytes("ffffffff00") + "Zo" + bytes("eb00");
    QTest::newRow("beyond Latin-1") << QString::fromUtf8("pw say 5 €") << bytes("ffffffff0000");
}

void DatagramPacketTest::requests()
{
    QFETCH(QString, text);
    ScriptedPeer peer({});
    const auto packet = packetTo(peer);
    QVERIFY(packet->send(text));
    QFETCH(QByteArray, datagram);
    QCOMPARE(peer.requests(), QList<QByteArray>({datagram}));
}

void DatagramPacketTest::timeOuts()
{
    const auto packet = DatagramPacket::initWithHost("127.0.0.1", 1);
    for (const auto &[attempt, milliseconds] : {std::pair{0u, 250}, std::pair{1u, 500}, std::pair{9u, 750}}) {
        packet->setSendAttemptNum(attempt);
        QElapsedTimer timer;
        timer.start();
        QString text = before;
        QCOMPARE(packet->receive(&text), RConResultTimeout);
        const qint64 elapsed = timer.elapsed();
        QCOMPARE(text, "Timed out");
        QVERIFY2(elapsed >= milliseconds - 20 && elapsed < milliseconds + 3000, QByteArray::number(elapsed));
    }
}

void DatagramPacketTest::reset()
{
    const auto packet = DatagramPacket::initWithHost("127.0.0.1", 1);
    packet->setSocket(socketWithReset({}));
    QString text = before;
    QCOMPARE(packet->receive(&text), RConResultError);
    QCOMPARE(text, "Unable to connect to server");

    packet->setSocket(socketWithReset(ScriptedPeer::framed("part")));
    quint32 count = 99;
    QCOMPARE(packet->receiveMulti(&text, &count), RConResultError);
    QCOMPARE(text, QString::fromLocal8Bit(strerror(ECONNRESET)));
    QCOMPARE(count, 99u);
}

void DatagramPacketTest::closedSocket()
{
    const auto packet = DatagramPacket::initWithHost("127.0.0.1", 1);
    const int descriptor = packet->socket();
    packet->close();
    QCOMPARE(packet->socket(), -1);
    QCOMPARE(::close(descriptor), -1);
    QString text = before;
    QCOMPARE(packet->receive(&text), RConResultError);
    QCOMPARE(text, QString::fromLocal8Bit(strerror(EBADF)));
    QCOMPARE(packet->receiveMulti(nullptr), RConResultError);
    QTest::ignoreMessage(QtWarningMsg, "errno=9 (Bad file descriptor)");
    QVERIFY(!packet->send("status"));
    QCOMPARE(packet->sendAttemptNum(), 1u);
}

void DatagramPacketTest::single_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<unsigned>("result");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << unsigned(RConResultNullReply)
                           << "The server replied with an empty packet.";
    QTest::newRow("text") << ScriptedPeer::framed("map: mp_dock") << unsigned(RConResultSuccess) << "map: mp_dock";
    QTest::newRow("oversized") << ScriptedPeer::framed(QByteArray(1489, 'x') + QByteArray(9000, 'y'))
                               << unsigned(RConResultSuccess) << QString(1489, u'x');
    QTest::newRow("garbage") << QByteArray("hello, is anybody there?") << unsigned(RConResultInvalidPacket)
                             << "An invalid packet was returned from the server.";
    QTest::newRow("password refused in words")
        << ScriptedPeer::framed("Invalid password.\n") << unsigned(RConResultInvalidPassword) << before;
}

void DatagramPacketTest::single()
{
    QFETCH(QByteArray, datagram);
    ScriptedPeer peer({{{datagram}}});
    const auto packet = packetTo(peer);
    QVERIFY(packet->send("status"));
    QString text = before;
    QTEST(unsigned(packet->receive(&text)), "result");
    QTEST(text, "text");
}

void DatagramPacketTest::gathering_data()
{
    QTest::addColumn<ScriptedPeer::Answer>("answer");
    QTest::addColumn<unsigned>("result");
    QTest::addColumn<QString>("text");
    QTest::addColumn<unsigned>("count");
    const auto framed = &ScriptedPeer::framed;
    using Answer = ScriptedPeer::Answer;
    QTest::newRow("three joined, the late fourth not read")
        << Answer{{framed("a ")}, {framed("b"), 150ms}, {framed("c\n"), 150ms}, {framed("d"), 1500ms}}
        << unsigned(RConResultSuccess) << "a bc\n"
        << 3u;
    QTest::newRow("an empty datagram ends it") << Answer{{framed("a")}, {framed("")}, {QByteArray()}, {framed("b")}}
                                               << unsigned(RConResultSuccess) << "a" << 2u;
    QTest::newRow("garbage in it") << Answer{{framed("a")}, {"garbage"}} << unsigned(RConResultInvalidPacket)
                                   << "An invalid packet was returned from the server." << 99u;
    QTest::newRow("refusal in it") << Answer{{framed("a")}, {bytes("ffffffff0a")}}
                                   << unsigned(RConResultInvalidPassword) << "Invalid password." << 99u;
    QTest::newRow("refusal in words in it")
        << Answer{{framed("a")}, {framed("Invalid password.\n")}} << unsigned(RConResultInvalidPassword) << "" << 99u;
    QTest::newRow("nothing but an empty datagram")
        << Answer{{QByteArray()}} << unsigned(RConResultNullReply) << "The server replied with an empty packet." << 99u;
}

void DatagramPacketTest::gathering()
{
    QFETCH(ScriptedPeer::Answer, answer);
    ScriptedPeer peer({answer});
    const auto packet = packetTo(peer);
    QVERIFY(packet->send("status"));
    QString text = before;
    quint32 count = 99;
    QTEST(unsigned(packet->receiveMulti(&text, &count)), "result");
    QTEST(text, "text");
    QTEST(count, "count");
}

void DatagramPacketTest::longReply_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("repetitions");
    QTest::addColumn<bool>("isAccepted");
    QTest::newRow("as much text as is accepted") << QByteArray(1024, 'x') << 16'384 << true;
    QTest::newRow("more text") << QByteArray(1024, 'x') << 16'385 << false;
    QTest::newRow("as many datagrams as are accepted") << QByteArray() << 65'536 << true;
    QTest::newRow("one datagram more") << QByteArray() << 65'537 << false;
}

void DatagramPacketTest::longReply()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, repetitions);
    QFETCH(bool, isAccepted);
    // Unlike UDP, a pair of local sockets makes a fast sender wait, so that nothing is lost.
    std::array<int, 2> ends{};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_DGRAM, 0, ends.data()), 0);
    const auto packet = DatagramPacket::initWithHost("127.0.0.1", 1);
    packet->setSocket(ends[0]);
    packet->setSendAttemptNum(2);
    const QByteArray datagram = ScriptedPeer::framed(payload);
    std::thread writer([&] {
        for (int i = 0; i < repetitions; ++i) {
            if (::send(ends[1], datagram.constData(), size_t(datagram.size()), 0) < 0)
                return;
        }
        static_cast<void>(::send(ends[1], "", 0, 0));
    });
    QString text;
    quint32 count = 0;
    const RConResult result = packet->receiveMulti(&text, &count);
    packet->close();
    writer.join();
    ::close(ends[1]);
    QCOMPARE(result, isAccepted ? RConResultSuccess : RConResultError);
    QCOMPARE(count, isAccepted ? quint32(repetitions) : 0u);
    if (isAccepted)
        QCOMPARE(text.size(), payload.size() * repetitions);
    else
        QCOMPARE(text, "The server's reply is too long.");
}

QTEST_GUILESS_MAIN(DatagramPacketTest)
#include "tst_datagrampacket.moc"
