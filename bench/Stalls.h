#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QTimer>

#include <algorithm>
#include <ctime>
#include <utility>

/// How late the main loop comes to a timer of 1 ms: what a key press or a repaint would have waited.
class Stalls : public QObject
{
public:
    Stalls()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        connect(&m_timer, &QTimer::timeout, this, &Stalls::beat);
    }

    void start()
    {
        m_sinceBeat.start();
        m_busyBefore = busy();
        m_timer.start();
    }
    void stop() { m_timer.stop(); }

    qsizetype beats() const { return m_late.size(); }
    /// In milliseconds: `part` of the beats came no later.
    double quantile(double part) const
    {
        QList<double> sorted = m_late;
        std::sort(sorted.begin(), sorted.end());
        return sorted.isEmpty() ? 0 : sorted.at(static_cast<qsizetype>(part * static_cast<double>(sorted.size() - 1)));
    }
    /// The longest work between two beats in milliseconds of the processor: what a stall comes to on an idle machine.
    double takeLongestWork() { return std::exchange(m_longestWork, 0); }

private:
    static double busy()
    {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
    }

    void beat()
    {
        m_late.append(std::max(0.0, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6 - 1));
        m_sinceBeat.start();
        const double now = busy();
        m_longestWork = std::max(m_longestWork, now - m_busyBefore);
        m_busyBefore = now;
    }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    QList<double> m_late;
    double m_busyBefore = 0;
    double m_longestWork = 0;
};
