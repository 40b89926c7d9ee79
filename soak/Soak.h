#pragma once

#include "AppDelegate.h"
#include "DemoServer.h"
#include "Gauge.h"
#include "Hand.h"
#include "Stalls.h"
#include "Traffic.h"

#include <QElapsedTimer>

/// Lets the hand work in the whole window over a lossy line for as long as one likes. Every few minutes it rests: the
/// line is good then, everything comes to its end, and what the window shows, what the servers were sent and what the
/// process holds is looked at. The server then comes back in another mode.
class Soak
{
public:
    struct Plan {
        double seconds = 3600;
        double secondsBetweenRests = 180;
        int restsToWarmUp = 3;
        quint64 seed = 1;
        std::chrono::milliseconds throttle{0}; ///< between requests that the server answers
        double secondsBetweenStops = 0;        ///< of the server; 0: it goes away at rests only
        QString folder;                        ///< for all files
    };

    explicit Soak(const Plan &plan);

    /// Prints what it finds. @return whether all was as it should be.
    bool perform();

private:
    void open();
    void work(double untilSeconds);
    void stopOrStartServer();
    void bringServerBack();
    void changeMode();
    bool leave();
    void setLine(double loss, std::chrono::milliseconds throttle);
    bool rest();
    bool settle();
    bool connectAnew();
    void connectToServer();
    void forgetWhatGrowsByDesign();
    void end();
    bool waitUntil(const std::function<bool()> &isReached);
    bool isConnectedAndIdle();
    FormMainView &window() { return m_application->window(); }
    double seconds() const { return static_cast<double>(m_clock.elapsed()) / 1000; }
    bool isAtServer() const
    {
        const KelServer &session = m_application->server();
        return session.isConnected() && session.port() == m_options.port;
    }
    QString valueNow(const QString &variable) const;
    void report(const QString &fault);
    void lookAtTraffic(QList<RecordedExchange> exchanges);

    // SoakRows.cpp
    void lookAtTabs();
    void lookAtWrites(const QList<RecordedExchange> &exchanges);
    void lookAtRows();
    QString difference(const char *what, QStringList shown, QStringList expected);
    QString playersFault();
    QString mapsFault();
    QString settingsFault();
    bool showPage(const char *name);

    const Plan m_plan;
    DemoOptions m_options;
    std::unique_ptr<DemoServer> m_server;
    QStringList m_commands; ///< that arrived since the last rest, before the server came back in another mode
    Hand m_hand;
    std::unique_ptr<AppDelegate> m_application; ///< anew whenever the hand has quit it
    Stalls m_stalls;
    QElapsedTimer m_clock;
    QStringList m_faults;
    QList<Gauge> m_rests;
    double m_nextStop = 0; ///< or start
    bool m_isAway = false;
    bool m_isSameGame = true;  ///< since the last rest the server has not lost what it held
    bool m_isModeKnown = true; ///< the console has connected, or seen the silence, since the mode changed
    qint64 m_exchanges = 0;
    qint64 m_arrivals = 0;
    qint64 m_rowsCompared = 0;
    int m_modeChanges = 0;
    int m_starts = 0;
};
