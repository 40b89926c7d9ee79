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
    const QByteArray head(4, '\xff');
    const QList<QByteArray> pieces{{}, head.first(1), head, head + '\x01', head + "\x02print\nhello\n"};
    const int chosen = m_random.below(static_cast<int>(pieces.size()) + 2);
    if (chosen < pieces.size())
        return pieces.at(chosen);
    // Noise, and more of it than a receiver has room for.
    const int length = chosen == pieces.size() ? m_random.between(1, 200) : 4000;
    QByteArray bytes(1, '\0'); // no reply begins with a zero
    while (bytes.size() < length)
        bytes.append(static_cast<char>(m_random.below(256)));
    return bytes;
}

void DemoFaultyLine::shuffle(QList<QByteArray> &datagrams)
{
    const QList<QByteArray> inOrder = datagrams;
    for (qsizetype i = datagrams.size() - 1; i > 0; --i)
        datagrams.swapItemsAt(i, m_random.below(static_cast<int>(i) + 1));
    if (datagrams == inOrder && datagrams.size() > 1)
        datagrams.swapItemsAt(0, 1);
}
