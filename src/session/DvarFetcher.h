#pragma once

#include "FetchQueue.h"
#include "KelServer.h"

#include <QCoroTask>

#include <QObject>
#include <QPromise>
#include <QStringList>
#include <QTimer>

#include <vector>

class ActionQueue;
class UnknownDvars;

/// Asks in the background for the variables that the catalogues name and the server's dump lacks. Each takes a turn of
/// its own, so that any action gets in between, and keeps the distance that the server wants. It ends by itself with
/// the connection, when the password is refused, and rests while the server is silent. Main thread only.
class DvarFetcher : public QObject
{
    Q_OBJECT
public:
    /// Everything handed in outlives this, and this outlives the actions that it starts.
    DvarFetcher(KelServer &server, ActionQueue &actions, UnknownDvars &unknown, QObject *parent = nullptr);
    ~DvarFetcher() override;

    /// Asks for what the catalogues name and the session does not hold; those that the server did not know when it was
    /// asked last come last.
    void start();
    /// Asks for these as well, known or not.
    void askFor(const QStringList &names);
    /// These are looked at: they come next.
    void prefer(const QStringList &names);
    /// Asks anew for everything that the server did not know, and for what it did not answer.
    void askAgain();
    void stop();

    /// Whether the value of a variable is still to come.
    bool isAwaited(const QString &name) const { return m_queue.contains(name); }
    /// Those of `names` that are still to come.
    QStringList missing(const QStringList &names) const;
    /// Whether the session lacks a variable because no answer came, and it is not asked for any more. Of the variables
    /// that were still to come when the connection ended, this is so until the next one is complete.
    bool isUnanswered(const QString &name) const;
    /// Resumes when one more variable has been settled, nothing is asked any more, or by wakeWaiting().
    QCoro::Task<> nextSettled();
    /// Lets who waits for a variable look again, because he may have another reason to stop.
    void wakeWaiting();
    bool isAsking() const { return !m_queue.isEmpty(); }

signals:
    /// It is known what is to be asked for, or more of it, and the first comes next.
    void began();
    /// A variable is not awaited any more: its value has come, or none will.
    void settled(const QString &name);
    /// `done` of `total` catalogued variables are settled.
    void progressed(int done, int total);
    /// Everything has been asked for: `unknown` of `total` catalogued variables are not on this server.
    void finished(int unknown, int total);

private:
    void schedule();
    void step();
    QCoro::Task<> fetchNext(quint64 connection);
    void settle(const QString &name, const Reply &reply);
    void finish();
    void tellProgress();

    KelServer &m_server;
    ActionQueue &m_actions;
    UnknownDvars &m_unknown;
    FetchQueue m_queue;
    QStringList m_catalogued;
    QStringList m_notOnServer;
    QStringList m_unanswered;
    QTimer m_timer; ///< until the next may be asked for, outside of any turn
    std::vector<QPromise<void>> m_waiting;
    bool m_isStepUnderWay = false;
    int m_noAnswersInARow = 0;
    bool m_isLookedAt = false; ///< somebody waits, also where the server wants to be left alone
};
