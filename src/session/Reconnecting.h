#pragma once

#include <QCoroTask>

#include <QObject>
#include <QTimer>

#include <chrono>

class ActionQueue;
class Alerts;
class DvarFetcher;
class KelServer;

/// Looks whether a server that fell silent is back, and brings the session to what it tells then: values, mode and
/// tabs. Transcript and history stay. A refused password is never tried again by itself. Main thread only.
class Reconnecting : public QObject
{
    Q_OBJECT
public:
    /// Everything handed in outlives this, and this outlives the actions that it starts.
    Reconnecting(KelServer &server, ActionQueue &actions, Alerts &alerts, DvarFetcher &fetcher,
                 QObject *parent = nullptr);

    /// Looks at once, without waiting for the next probe.
    void tryNow();
    /// Tries another password, once.
    void tryPassword(const QString &password);

signals:
    /// The server answers after `silence`; `differences` catalogued variables have other values now.
    void cameBack(std::chrono::milliseconds silence, int differences);
    /// Another server answers in its place, and the user does not want that one.
    void disconnectWanted();

private:
    void followLink();
    void probe();
    QCoro::Task<> probeOnce(quint64 connection);
    void resume(std::chrono::milliseconds silence);
    QCoro::Task<> reread(quint64 connection, std::chrono::milliseconds silence);
    QCoro::Task<bool> isSameServer(QString hostname);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    DvarFetcher &m_fetcher;
    QTimer m_timer;
    std::chrono::steady_clock::time_point m_lookingFrom; ///< the time in which the machine sleeps does not count
    int m_probes = 0;                                    ///< since the server fell silent
    bool m_isProbeWaiting = false;
};
