#pragma once

#include "Exchange.h"

#include <QStringList>

#include <utility>

/// An exchange that gives its replies one after another, without a wait; then it answers nothing.
class ReadyExchange final : public Exchange
{
public:
    explicit ReadyExchange(QStringList replies = {}) : m_replies(std::move(replies)) {}

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
