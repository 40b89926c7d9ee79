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
    void frames_data()
    {
        QTest::addColumn<QByteArray>("datagram");
        QTest::addColumn<unsigned>("result");
        QTest::addColumn<QString>("text");
        const auto row = [](const char *name, const QByteArray &datagram, unsigned result, const QString &text) {
            QTest::newRow(name) << datagram << result << text;
        };
        const auto good = [&row](const char *name, const QByteArray &payload, const QString &text) {
            row(name, ScriptedPeer::framed(payload), RConResultSuccess, text);
        };
        const auto bad = [&row](const char *name, const QByteArray &datagram) {
            row(name, datagram, RConResultInvalidPacket, "An invalid packet was returned from the server.");
        };
        row("refusal", bytes("ffffffff0a"), RConResultInvalidPassword, "Invalid password.");
        row("password refused", ScriptedPeer::framed("Invalid password.\n"), RConResultInvalidPassword, before);
        row("no password set", ScriptedPeer::framed("The server must set 'rcon_password' for clients to use 'rcon'.\n"),
            RConResultInvalidPassword, before);
        bad("refusal, byte 0 wrong", bytes("feffffff0a"));
        bad("refusal and one more byte", bytes("ffffffff0a00"));
        bad("nine bytes", bytes("ffffffff0141424344"));
        bad("first byte wrong", bytes("7fffffff0141424344454647"));
        bad("fourth byte wrong", bytes("ffffff7f0141424344454647"));
        bad("marker wrong", bytes("ffffffff0041424344454647"));
        row("ten bytes", bytes("ffffffff014142434445"), RConResultSuccess, "");
        good("ends at the first zero byte", QByteArray("abc\0def", 7), "abc");
        good("high bytes", bytes("5a6feb80ff"), QString::fromLatin1("Zo\xeb\x80\xff"));
        good("backslash n", R"(a\nb)", "a\nb");
        good("two backslashes and n", R"(a\\nb)", "a\nb");
        good("newline before colours", R"(\^1n)", "\\n");
        good("refusal without newline", "Invalid password.", "Invalid password.");
    }
    void frames()
    {
        QFETCH(QByteArray, datagram);
        QFETCH(unsigned, result);
        const auto length = size_t(datagram.size());
        QString text = before;
        QCOMPARE(unsigned(DatagramPacket::getString(&text, datagram.constData(), length)), result);
        QTEST(text, "text");
        QCOMPARE(unsigned(DatagramPacket::getString(nullptr, datagram.constData(), length)), result);
    }

    void hosts()
    {
        // A name is not resolved, an address is not completed, and a zero byte hides nothing.
        for (const QString &host :
             {QString("localhost"), QString("10.0.1"), QString::fromLatin1("127.0.0.1\0.a", 12)}) {
            DatagramPacketError error{"untouched", 7, "untouched"};
            QVERIFY2(!DatagramPacket::initWithHost(host, 1, &error), qPrintable(host));
            QVERIFY(!DatagramPacket::initWithHost(host, 1));
            QCOMPARE(error.domain, "DatagramPacketDomain");
            QCOMPARE(error.code, 0);
            QCOMPARE(error.localizedDescription, "No such host is known.");
        }
    }

    void requestsAreLatin1()
    {
        ScriptedPeer peer({});
        const auto packet = packetTo(peer);
        QVERIFY(packet->send(QString::fromUtf8("Zoë")));
        QVERIFY(packet->send(QString::fromUtf8("pw say 5 €")));
        QCOMPARE(peer.requests(), QList<QByteArray>({bytes("ffffffff005a6feb00"), bytes("ffffffff0000")}));
    }

    void timeOuts()
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

    void reset()
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

    void closedSocket()
    {
        const auto packet = DatagramPacket::initWithHost("127.0.0.1", 1);
        packet->close();
        QString text = before;
        QCOMPARE(packet->receive(&text), RConResultError);
        QCOMPARE(text, QString::fromLocal8Bit(strerror(EBADF)));
        QCOMPARE(packet->receiveMulti(nullptr), RConResultError);
        QTest::ignoreMessage(QtWarningMsg, "errno=9 (Bad file descriptor)");
        QVERIFY(!packet->send("status"));
        QCOMPARE(packet->sendAttemptNum(), 1u);
    }

    void gathering_data()
    {
        QTest::addColumn<ScriptedPeer::Answer>("answer");
        QTest::addColumn<unsigned>("result");
        QTest::addColumn<QString>("text");
        QTest::addColumn<unsigned>("count");
        const auto framed = &ScriptedPeer::framed;
        using Answer = ScriptedPeer::Answer;
        QTest::newRow("cut at 1500 bytes") << Answer{{framed(QByteArray(1489, 'x') + QByteArray(9000, 'y'))}}
                                           << unsigned(RConResultSuccess) << QString(1489, u'x') << 1u;
        QTest::newRow("three joined, the late fourth not read")
            << Answer{{framed("a ")}, {framed("b"), 150ms}, {framed("c\n"), 150ms}, {framed("d"), 1500ms}}
            << unsigned(RConResultSuccess) << "a bc\n"
            << 3u;
        QTest::newRow("garbage in it") << Answer{{framed("a")}, {"garbage"}} << unsigned(RConResultInvalidPacket)
                                       << "An invalid packet was returned from the server." << 99u;
    }
    void gathering()
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

    void longReply_data()
    {
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<int>("repetitions");
        QTest::addColumn<bool>("isAccepted");
        QTest::newRow("as much text as is accepted") << QByteArray(1024, 'x') << 16'384 << true;
        QTest::newRow("more text") << QByteArray(1024, 'x') << 16'385 << false;
        QTest::newRow("as many datagrams as are accepted") << QByteArray() << 65'536 << true;
        QTest::newRow("one datagram more") << QByteArray() << 65'537 << false;
    }
    void longReply()
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
};

QTEST_GUILESS_MAIN(DatagramPacketTest)
#include "tst_datagrampacket.moc"
