#include "DemoWire.h"

#include <algorithm>

namespace
{
constexpr qsizetype PayloadBytes = 1000;

QByteArray outOfBand()
{
    return QByteArray(4, '\xff');
}
} // namespace

std::optional<QString> demoRequestText(QByteArrayView datagram)
{
    const QByteArray head = outOfBand() + '\0';
    if (!datagram.startsWith(head))
        return std::nullopt;
    const QByteArrayView text = datagram.sliced(head.size());
    const qsizetype end = text.indexOf('\0');
    return QString::fromLatin1(end < 0 ? text : text.first(end));
}

QList<QByteArray> demoReplyDatagrams(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    QList<QByteArray> datagrams;
    qsizetype sent = 0;
    do {
        const QByteArray part = bytes.mid(sent, PayloadBytes);
        datagrams.append(outOfBand() + "\x01print\n" + part + '\0');
        sent += PayloadBytes;
    } while (sent < bytes.size());
    return datagrams;
}

QByteArray demoRefusalDatagram()
{
    return outOfBand() + '\x0a';
}
