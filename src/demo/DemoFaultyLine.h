#pragma once

#include "DemoOptions.h"
#include "DemoRandom.h"

#include <QByteArray>
#include <QList>

/// A datagram on its way to a client.
struct DemoDatagram {
    enum class Sender {
        Server,
        OtherPort, ///< of the server's address
        Stranger   ///< at another address
    };

    QByteArray bytes;
    Sender sender = Sender::Server;
    std::chrono::milliseconds after{0}; ///< how long after the request it arrives
};

/// Does to the datagrams of a reply what a bad line does. Deterministic for a seed.
class DemoFaultyLine
{
public:
    explicit DemoFaultyLine(quint64 seed) : m_random(seed) {}

    void setFaults(const DemoFaults &faults) { m_faults = faults; }
    const DemoFaults &faults() const { return m_faults; }

    bool losesRequest() { return m_random.happens(m_faults.loss); }
    /// @return what is left of a reply and what comes before it, in the order in which it arrives.
    QList<DemoDatagram> carry(QList<QByteArray> datagrams);

private:
    QByteArray malformedDatagram();
    void shuffle(QList<QByteArray> &datagrams);

    DemoFaults m_faults;
    DemoRandom m_random;
};
