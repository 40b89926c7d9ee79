#include "Fuzzing.h"

#include "DatagramPacket.h"

#include <algorithm>

static void checkPayloadLengths(const QByteArray &packet)
{
    const qsizetype length = packet.size();
    for (qsizetype start = 0; start <= length + 1; ++start) {
        const qsizetype payload = DatagramPacket::getDataPacketPayloadLength(packet, start);
        require(payload <= length - std::min(start, length), "a payload ends within its datagram");
    }
}

/// A text that is sent as it is arrives as it is.
static void checkPlainText(const QString &text)
{
    if (text.contains(u'^') || text.contains(u'\\'))
        return;
    const QByteArray packet = QByteArray("\xff\xff\xff\xff\x01print\n", 11) + text.toLatin1();
    QString again;
    const RConResult result = DatagramPacket::getString(&again, packet);
    require(result == RConResultInvalidPassword || again == text, "a plain text arrives unchanged");
}

static void fuzz(const QByteArray &bytes)
{
    const RConResult validity = DatagramPacket::validateDataPacket(bytes);
    const QString before = "before";
    QString text = before;
    const RConResult result = DatagramPacket::getString(&text, bytes);
    require(result == validity || (validity == RConResultSuccess && result == RConResultInvalidPassword),
            "the frame decides, and then a refusal");
    if (validity == RConResultSuccess && result == RConResultInvalidPassword)
        require(text == before, "a refusal in words leaves the text alone");
    checkPayloadLengths(bytes.left(64));
    if (result != RConResultSuccess)
        return;
    require(text.size() <= std::max<qsizetype>(bytes.size() - 11, 0), "cleaning never lengthens");
    require(!text.contains(QChar::Null), "a text ends at the first zero byte");
    checkPlainText(text);
}
