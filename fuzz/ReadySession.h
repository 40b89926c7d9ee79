#pragma once

#include "Exchange.h"
#include "KelServer.h"
#include "RecordedAlerts.h"

#include <utility>

/// A session without a line: an exchange that gives its replies one after another and then nothing, without a wait.
struct ReadySession {
    class Line final : public Exchange
    {
    public:
        explicit Line(QStringList replies) : m_replies(std::move(replies)) {}
        QCoro::Task<Reply> send(Request, Arrived) override
        {
            const Reply reply{RConResultSuccess, m_replies.value(m_next++), false};
            co_return reply;
        }
        void cancel() override {}

    private:
        QStringList m_replies;
        qsizetype m_next = 0;
    };

    explicit ReadySession(const QStringList &replies = {}) : line(replies) {}

    Line line;
    RecordedAlerts alerts;
    KelServer server{line, alerts};
};

/// The input as the texts of a server's replies, a zero byte between them; there are `count` of them, empty ones at
/// the end if need be.
inline QStringList repliesIn(const QByteArray &bytes, qsizetype count)
{
    QStringList replies;
    const QList<QByteArray> pieces = bytes.split('\0');
    for (qsizetype i = 0; i < count; ++i)
        replies.append(QString::fromLatin1(pieces.value(i)));
    return replies;
}
