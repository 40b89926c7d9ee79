#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QTimer>

#include <algorithm>
#include <ctime>
#include <utility>

/// How late the main loop comes to a timer of 1 ms: what a key press or a repaint would have waited. All times are in
/// milliseconds.
class Stalls
{
public:
    Stalls()
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.start(1);
        beginAnew();
    }

    /// This share of the beats, 0 to 1, came no later.
    double quantile(double share) const
    {
        QList<double> late = m_late;
        std::sort(late.begin(), late.end());
        return late.at(static_cast<qsizetype>(static_cast<double>(late.size() - 1) * share));
    }
    /// The longest work between two beats since the last call, in time of the processor: what a stall comes to on an
    /// idle machine.
    double takeLongestWork() { return std::exchange(m_longestWork, 0); }

private:
    static double work()
    {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
    }

    void beginAnew()
    {
        m_sinceBeat.start();
        m_workAtBeat = work();
    }
    void beat()
    {
        m_late.append(std::max(0.0, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6 - 1));
        m_longestWork = std::max(m_longestWork, work() - m_workAtBeat);
        beginAnew();
    }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    QList<double> m_late;
    double m_workAtBeat = 0;
    double m_longestWork = 0;
};
