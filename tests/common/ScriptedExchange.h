#pragma once

#include "Exchange.h"

#include <QCoroFuture>

#include <QHash>
#include <QList>
#include <QPromise>
#include <QStringList>

#include <deque>
#include <initializer_list>
#include <optional>
#include <utility>

/// An exchange that answers from a list and tells what was asked. Commands without an answer time out.
/// Held, it keeps every reply back until release() or cancel(), so that a test can act in the middle of an exchange.
class ScriptedExchange final : public Exchange
{
public:
    using Answers = std::initializer_list<std::pair<QString, Reply>>;

    ScriptedExchange(Answers answers = {})
    {
        for (const auto &[command, reply] : answers)
            answer(command, reply);
    }

    static Reply ok(const QString &text = {}) { return Reply{RConResultSuccess, text, false}; }
    /// What "dvardump" brings from a server that has every required variable; `mode` says how it plays.
    static Reply dump(const QString &mode = QStringLiteral("sv_ranked \"0\"\nplaylist_enabled \"0\"\n"))
    {
        return ok(QStringLiteral("  rcon_password \"secret\"\nS sv_hostname \"h\"\n"
                                 "playlist_excludeMap \"a\"\nplaylist_excludeGametype \"b\"\n"
                                 "playlist_excludeGametypeMap \"c\"\n") +
                  mode);
    }
    static Reply failure(const QString &text = QStringLiteral("no answer"), RConResult result = RConResultTimeout)
    {
        return Reply{result, text, false};
    }

    void answer(const QString &command, const Reply &reply) { m_answers[command] = reply; }
    /// Whatever is asked of this address gets this answer.
    void answerFrom(const QString &address, const Reply &reply) { m_answersFrom[address] = reply; }
    void forget(const QString &command) { m_answers.remove(command); }
    /// Whatever has no answer of its own gets this one.
    void answerEverything(const Reply &reply) { m_fallback = reply; }

    void hold() { m_isHeld = true; }
    /// Gives the oldest kept reply.
    void release()
    {
        QPromise<bool> promise = std::move(m_kept.front());
        m_kept.pop_front();
        m_arrived.pop_front();
        finish(promise, true);
    }
    /// Brings a part of the oldest kept reply.
    void arrive(const QString &text)
    {
        if (m_arrived.front())
            m_arrived.front()(text);
    }
    int keptCount() const { return static_cast<int>(m_kept.size()); }

    QCoro::Task<Reply> send(Request request, Arrived arrived = {}) override
    {
        m_requests.append(request);
        QPromise<bool> promise;
        promise.start();
        const QFuture<bool> pending = promise.future();
        if (m_isHeld) {
            m_kept.push_back(std::move(promise));
            m_arrived.push_back(arrived);
        } else {
            finish(promise, true);
        }
        const bool isAnswered = co_await pending;
        if (!isAnswered)
            co_return Reply{RConResultError, QStringLiteral("cancelled"), true};
        const Reply fallback = m_fallback.value_or(failure());
        const Reply byCommand = m_answers.value(request.command, fallback);
        const Reply reply = m_answersFrom.value(request.address, byCommand);
        if (arrived && reply.isSuccess() && !reply.text.isEmpty())
            arrived(reply.text);
        co_return reply;
    }

    void cancel() override
    {
        std::deque<QPromise<bool>> kept;
        kept.swap(m_kept);
        m_arrived.clear();
        for (QPromise<bool> &promise : kept)
            finish(promise, false);
    }

    /// What link() tells from now on.
    void setLink(const LinkState &link) { m_link = link; }
    LinkState link() const override { return m_link; }

    QList<Request> requests() const { return m_requests; }
    QStringList sent() const
    {
        QStringList commands;
        for (const Request &request : m_requests)
            commands.append(request.command);
        return commands;
    }
    void forgetSent() { m_requests.clear(); }

private:
    static void finish(QPromise<bool> &promise, bool isAnswered)
    {
        promise.addResult(isAnswered);
        promise.finish();
    }

    QHash<QString, Reply> m_answers;
    QHash<QString, Reply> m_answersFrom;
    std::optional<Reply> m_fallback;
    LinkState m_link;
    QList<Request> m_requests;
    std::deque<QPromise<bool>> m_kept;
    std::deque<Arrived> m_arrived; ///< for the kept replies
    bool m_isHeld = false;
};
