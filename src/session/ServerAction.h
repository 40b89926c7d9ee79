#pragma once

#include "ActionQueue.h"
#include "Exchange.h"
#include "Outcome.h"

#include <QCoreApplication>
#include <QCoroTask>

#include <optional>

class KelServer;

/// One thing that somebody has the server do: it waits for its turn, sends, tells of failures in alerts, and at its end
/// tells what became of it through KelServer::tellOutcome(). It lives in the coroutine of the action and has its turn
/// as long. What was called off sends nothing more and tells nothing. Main thread only.
class ServerAction
{
    Q_DECLARE_TR_FUNCTIONS(ServerAction)
public:
    /// Takes its place in the queue at once. Both outlive the action.
    /// @param outcome  what is done and to whom, and the text for a server that says nothing of it. Without an `action`
    ///                 only failures are told, by their alerts.
    ServerAction(KelServer &server, ActionQueue &actions, Outcome outcome = {});
    ~ServerAction();
    ServerAction(const ServerAction &) = delete;
    ServerAction &operator=(const ServerAction &) = delete;

    /// Resumes in turn. @return whether to go on: false when the action has been called off meanwhile.
    QCoro::Task<bool> begin();
    /// Whether it has its turn and has not been called off.
    explicit operator bool() const;
    /// What was sent last could not be, as the game cannot hold its text.
    bool isRefused() const { return m_isRefused; }

    /// Sends a command; a failure is told. Nothing is sent when the action was called off.
    /// @param name  by which the alert calls the command: its first word if empty.
    /// @return whether the server has taken it.
    QCoro::Task<bool> send(QString line, QString name = {});
    /// The same of a variable and its new value.
    QCoro::Task<bool> write(QString dvar, QString value);

    /// Sends a command and leaves it to the caller to tell of a failure.
    QCoro::Task<Reply> request(QString line);
    /// Tells in an alert that the action has failed, or a part of it.
    QCoro::Task<> tellOfFailure(QString text);
    /// Ends its turn, so that others act while a failure is told. It has no outcome then.
    void leaveTurn() { m_turn.reset(); }
    /// What an alert says of a command that was not taken.
    static QString failureText(const QString &name, const QString &error);
    /// Takes the reply to what the caller has sent by himself into the outcome.
    /// @param isSecret  the server's words may hold a password.
    /// @param unsaid    what has happened then, where the server says nothing of it.
    void note(const Reply &reply, bool isSecret, const QString &unsaid = {});

private:
    QCoro::Task<bool> tellUnlessTaken(Reply reply, QString name);

    KelServer &m_server;
    QCoro::Task<ActionQueue::Turn> m_place;
    std::optional<ActionQueue::Turn> m_turn;
    Outcome m_outcome;
    QStringList m_said; ///< by the server
    bool m_isCancelled = false;
    bool m_isRefused = false;
};
