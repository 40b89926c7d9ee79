#pragma once

#include "AppDelegate.h"
#include "DemoServer.h"
#include "Gauge.h"
#include "Hand.h"
#include "Traffic.h"

#include <QElapsedTimer>

/// Lets the hand work in the whole window over a lossy line for as long as one likes. Every few minutes it rests: the
/// line is good then, everything comes to its end, and what the window shows, what the server was sent and what the
/// process holds is looked at. The server then comes back in another mode.
class Soak
{
public:
    struct Plan {
        double seconds = 3600;
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
    bool rest();
    bool settle();
    bool leave();
    bool connect();
    void forgetWhatGrowsByDesign();
    void changeMode();
    void end();
    bool waitUntil(const char *what, const std::function<bool()> &isReached);
    bool waitUntilIdle();
    FormMainView &window() { return m_application->window(); }
    double seconds() const { return static_cast<double>(m_clock.elapsed()) / 1000; }
    bool isAtServer() const
    {
        const KelServer &session = m_application->server();
        return session.isConnected() && session.port() == m_options.port;
    }
    void reportIf(const QString &fault);

    // SoakRows.cpp
    void lookAtTraffic();
    void lookAtTabs();
    void lookAtRows();
    QString difference(const char *what, const QStringList &shown, const QStringList &expected);
    QString playersFault();
    QString mapsFault();
    QString settingsFault();
    QString valueNow(const QString &variable) const;

    const Plan m_plan;
    DemoOptions m_options;
    std::unique_ptr<DemoServer> m_server;
    Hand m_hand;
    std::unique_ptr<AppDelegate> m_application; ///< anew whenever the hand has quit it
    QElapsedTimer m_clock;
    double m_nextStop = 0; ///< or start
    bool m_isAway = false;
    QList<Gauge> m_rests;
    qint64 m_exchanges = 0;
    qint64 m_rowsCompared = 0;
    bool m_hasFaults = false;
};
