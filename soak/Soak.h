#pragma once

#include "Gauge.h"
#include "Hand.h"
#include "Heartbeat.h"
#include "MessageWatch.h"
#include "TrafficRecord.h"

#include <QElapsedTimer>
#include <QStringList>

#include <functional>

class AppDelegate;
class GameServers;
struct RecordedExchange;

/// Lets the hand work in the whole window over a lossy line for as long as one likes. Every few minutes it rests: the
/// line is good then, everything comes to its end, and what the window shows, what the servers were sent and what the
/// process holds is looked at. In between it notes what the process holds and how long the main loop stands still.
class Soak
{
public:
    struct Plan {
        double seconds = 3600;
        double secondsBetweenRests = 180;
        int restsToWarmUp = 2;
        quint64 seed = 1;
        int throttle = 0;               ///< milliseconds between requests that the servers answer
        double secondsBetweenStops = 0; ///< of the server in use; 0: it never goes away
        QString folder;                 ///< for what is saved, and for the traffic log
    };

    Soak(AppDelegate &application, GameServers &servers, const Plan &plan);

    /// Prints what it finds, and at the end a table. @return whether all was as it should be.
    bool perform();

private:
    bool begin();
    void work(double untilSeconds);
    void stopOrStartServer();
    bool rest();
    void forgetWhatGrowsByDesign();
    bool settle();
    bool connectAnew();
    void end();
    void takeSample();
    double seconds() const { return static_cast<double>(m_clock.elapsed()) / 1000; }
    bool waitUntil(const std::function<bool()> &isReached);
    bool isConnectedAndIdle() const;
    int serverInUse() const;
    void report(const QString &fault);

    // SoakRows.cpp
    void lookAtRows();
    void lookAtWrites(const QList<RecordedExchange> &exchanges);
    QString playersFault();
    QString mapsFault();
    QString settingsFault();
    QString outlineFault(const QAbstractItemView &outline);
    QStringList serverValues(const QStringList &names) const;

    // SoakVerdict.cpp
    void lookAtTraffic(const QList<RecordedExchange> &exchanges);
    void lookAtMessages(const QList<RecordedExchange> &exchanges);
    bool printGrowth() const;
    void printCounts() const;

    AppDelegate &m_application;
    GameServers &m_servers;
    const Plan m_plan;
    MessageWatch m_watch;
    Hand m_hand;
    TrafficRecord m_record;
    Heartbeat m_heartbeat;
    QElapsedTimer m_clock;
    double m_nextSample = 0;
    double m_nextStop = 60; ///< or start, of the server in use
    int m_stopped = -1;     ///< the server that is away
    QList<Gauge> m_samples; ///< one for each ten seconds of work
    QList<Gauge> m_rests;
    QStringList m_faults;
    qint64 m_exchanges = 0;
    qint64 m_failedExchanges = 0;
    qint64 m_sends = 0;
    qint64 m_arrivals = 0;
    qint64 m_messages = 0;
    qint64 m_failedMessages = 0;
    qint64 m_rowsCompared = 0;
};
