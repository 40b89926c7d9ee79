#include "DatagramPacket.h"
#include "ScriptedPeer.h"

#include <QTest>

namespace
{

const QString before = QStringLiteral("before");

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

class ReplyFramesTest : public QObject
{
    Q_OBJECT

private slots:
    void validation_data();
    void validation();
    void texts_data();
    void texts();
    void payloadLength();
};

void ReplyFramesTest::validation_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<unsigned>("result");
    QTest::newRow("refusal") << bytes("ffffffff0a") << unsigned(RConResultInvalidPassword);
    QTest::newRow("five bytes with the marker") << bytes("ffffffff01") << unsigned(RConResultInvalidPacket);
    QTest::newRow("refusal, byte 0 wrong") << bytes("feffffff0a") << unsigned(RConResultInvalidPacket);
    QTest::newRow("refusal and one more byte") << bytes("ffffffff0a00") << unsigned(RConResultInvalidPacket);
    QTest::newRow("nine bytes") << bytes("ffffffff0141424344") << unsigned(RConResultInvalidPacket);
    QTest::newRow("ten bytes") << bytes("ffffffff014142434445") << unsigned(RConResultSuccess);
    QTest::newRow("marker wrong") << bytes("ffffffff00414243444546") << unsigned(RConResultInvalidPacket);
    QTest::newRow("long refusal") << bytes("ffffffff0a414243444546") << unsigned(RConResultInvalidPacket);
    for (int i = 0; i < 4; ++i) {
        QByteArray datagram = ScriptedPeer::framed("abc");
        datagram[i] = '\x7f';
        QTest::addRow("header byte %d wrong", i) << datagram << unsigned(RConResultInvalidPacket);
    }
}

void ReplyFramesTest::validation()
{
    QFETCH(QByteArray, datagram);
    QFETCH(unsigned, result);
    const auto length = size_t(datagram.size());
    QCOMPARE(unsigned(DatagramPacket::validateDataPacket(datagram.constData(), length)), result);
    QString text = before;
    QCOMPARE(unsigned(DatagramPacket::getString(&text, datagram.constData(), length)), result);
    QCOMPARE(unsigned(DatagramPacket::getString(nullptr, datagram.constData(), length)), result);
    const QStringList texts{"", "", "Invalid password.", "An invalid packet was returned from the server."};
    QCOMPARE(text, texts[result]);
}

void ReplyFramesTest::texts_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<unsigned>("result");
    QTest::addColumn<QString>("text");
    const unsigned good = RConResultSuccess;
    QTest::newRow("ends at the first zero byte") << QByteArray("abc\0def", 7) << good << "abc";
    QTest::newRow("high bytes") << bytes("5a6feb80ff") << good << QString::fromLatin1("Zo\xeb\x80\xff");
    QTest::newRow("backslash n") << QByteArray(R"(a\nb)") << good << "a\nb";
    QTest::newRow("two backslashes and n") << QByteArray(R"(a\\nb)") << good << "a\nb";
    QTest::newRow("colour codes") << QByteArray("^1Red^7 ^a") << good << "Red ^a";
    QTest::newRow("newline before colours") << QByteArray(R"(\^1n)") << good << "\\n";
    QTest::newRow("password refused") << QByteArray("Invalid password.\n") << unsigned(RConResultInvalidPassword)
                                      << before;
    QTest::newRow("no password set") << QByteArray("The server must set 'rcon_password' for clients to use 'rcon'.\n")
                                     << unsigned(RConResultInvalidPassword) << before;
    QTest::newRow("refusal without newline") << QByteArray("Invalid password.") << good << "Invalid password.";
}

void ReplyFramesTest::texts()
{
    QFETCH(QByteArray, payload);
    QFETCH(unsigned, result);
    const QByteArray datagram = ScriptedPeer::framed(payload);
    QString text = before;
    QCOMPARE(unsigned(DatagramPacket::getString(&text, datagram.constData(), size_t(datagram.size()))), result);
    QTEST(text, "text");
    QCOMPARE(unsigned(DatagramPacket::getString(nullptr, datagram.constData(), size_t(datagram.size()))), result);
}

void ReplyFramesTest::payloadLength()
{
    const QByteArray datagram("abc\0de", 6);
    const QList<size_t> expected{3, 2, 1, 0, 2, 1, 0, 0};
    for (qsizetype start = 0; start < expected.size(); ++start)
        QCOMPARE(DatagramPacket::getDataPacketPayloadLength(datagram.constData(), 6, size_t(start)), expected[start]);
}

QTEST_GUILESS_MAIN(ReplyFramesTest)
#include "tst_replyframes.moc"
