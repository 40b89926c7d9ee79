#pragma once

#include "LoopbackServer.h"

#include <QList>

#include <chrono>

/// Answers every request with the same long reply, over as many datagrams as it takes.
class LongReplyServer
{
public:
    explicit LongReplyServer(const QByteArray &reply) : m_datagrams(datagramsOf(reply)) {}

    quint16 port() const { return m_server.port(); }

private:
    static QList<QByteArray> datagramsOf(const QByteArray &reply)
    {
        constexpr qsizetype largestPart = 1200;
        QList<QByteArray> datagrams;
        for (qsizetype place = 0; place < reply.size(); place += largestPart)
            datagrams.append("\xff\xff\xff\xff\x01print\n" + reply.mid(place, largestPart));
        return datagrams;
    }

    void answer()
    {
        for (const QByteArray &part : std::as_const(m_datagrams)) {
            m_server.answer(part);
            std::this_thread::sleep_for(std::chrono::microseconds(50)); // what a socket's buffer holds is limited
        }
    }

    const QList<QByteArray> m_datagrams; ///< before the server, whose thread reads them
    LoopbackServer m_server{[this](const QByteArray &) {
        answer();
    }};
};
