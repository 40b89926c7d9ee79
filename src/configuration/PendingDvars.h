#pragma once

#include <QCoroTask>

#include <QObject>
#include <QStringList>

class ActionQueue;
class DvarFetcher;
class KelServer;
class Progress;

/// Waits for the variables that a task needs and that are still fetched in the background, with progress and Cancel.
/// Each is fetched in a turn of its own, so that any action gets in between. One waiting at a time. Main thread only.
class PendingDvars : public QObject
{
    Q_OBJECT
public:
    enum class End {
        Settled,   ///< none is to come any more
        Cancelled, ///< by the user
        CalledOff  ///< with the connection, or by closing
    };

    /// Everything handed in outlives this; `progress` is this one's alone.
    PendingDvars(KelServer &server, ActionQueue &actions, DvarFetcher &fetcher, Progress &progress);
    ~PendingDvars() override;

    /// Resumes when none of `names` is to come any more, at once when it is so already. Without a connection nothing is
    /// to come. The action that calls it has no turn.
    QCoro::Task<End> finish(QStringList names);
    bool isUnderWay() const { return m_isUnderWay; }

    /// Those of `names` that the session lacks though the server never said that it does not know them.
    QStringList unanswered(const QStringList &names) const;

signals:
    void isUnderWayChanged(bool isUnderWay);

private:
    class Run;

    QStringList toCome(const QStringList &names) const;
    /// Whether the connect that is under way, if there is one, has come to its end.
    QCoro::Task<bool> isConnectOver();
    QCoro::Task<> waitFor(QStringList names);

    KelServer &m_server;
    ActionQueue &m_actions;
    DvarFetcher &m_fetcher;
    Progress &m_progress;
    bool m_isUnderWay = false;
    bool m_isCancelled = false;
    bool m_isCalledOff = false;
};
