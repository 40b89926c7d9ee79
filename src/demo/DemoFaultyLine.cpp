#include "DemoFaultyLine.h"

#include "DemoWire.h"

#include <algorithm>

QList<DemoDatagram> DemoFaultyLine::carry(QList<QByteArray> datagrams)
{
    if (m_faults.silent)
        return {};
    if (m_random.happens(m_faults.garbage))
        datagrams = {malformedDatagram()};
    if (m_faults.reorder)
        shuffle(datagrams);
    if (m_faults.silentAfter > 0)
        datagrams.resize(std::min<qsizetype>(datagrams.size(), m_faults.silentAfter));
    QList<DemoDatagram> arriving;
    if (m_faults.stranger) {
        for (const QByteArray &datagram : demoReplyDatagrams(QStringLiteral("A stranger speaks for the server.\n")))
            arriving.append({datagram, DemoDatagram::Sender::Stranger, m_faults.delay});
    }
    const auto sender = m_faults.otherPort ? DemoDatagram::Sender::OtherPort : DemoDatagram::Sender::Server;
    std::chrono::milliseconds after = m_faults.delay;
    for (const QByteArray &datagram : std::as_const(datagrams)) {
        if (!m_random.happens(m_faults.loss)) {
            arriving.append({datagram, sender, after});
            if (m_random.happens(m_faults.duplication))
                arriving.append({datagram, sender, after});
        }
        after += m_faults.gap; // a lost datagram takes its time too
    }
    return arriving;
}

QByteArray DemoFaultyLine::malformedDatagram()
{
    QByteArray head(4, '\xff');
    const auto noise = [this](int length) {
        QByteArray bytes(1, '\0'); // no reply begins with a zero
        while (bytes.size() < length)
            bytes.append(static_cast<char>(m_random.below(256)));
        return bytes;
    };
    switch (m_random.below(7)) {
    case 0:
        return {};
    case 1:
        return head.first(1);
    case 2:
        return head;
    case 3:
        return head + '\x01';
    case 4:
        return head + "\x02print\nhello\n";
    case 5:
        return noise(m_random.between(1, 200));
    default:
        return noise(4000); // more than a receiver has room for
    }
}

void DemoFaultyLine::shuffle(QList<QByteArray> &datagrams)
{
    if (datagrams.size() < 2)
        return;
    const QList<QByteArray> inOrder = datagrams;
    for (qsizetype i = datagrams.size() - 1; i > 0; --i)
        datagrams.swapItemsAt(i, m_random.below(static_cast<int>(i) + 1));
    if (datagrams == inOrder)
        datagrams.swapItemsAt(0, 1);
}
