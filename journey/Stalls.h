#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <array>
#include <ctime>
#include <utility>

/// How late the main loop comes to a timer of 1 ms: what a key press or a repaint would have waited. Bounded memory,
/// however long it watches.
class Stalls
{
public:
    Stalls()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(1);
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
    }

    void start()
    {
        beginAnew();
        m_timer.start();
    }
    void stop() { m_timer.stop(); }
    /// The next beat is counted from now: what went before was nobody's stall.
    void beginAnew()
    {
        m_sinceBeat.start();
        m_workAtBeat = work();
    }

    qint64 beats() const { return m_beats; }
    /// Milliseconds, to a tenth: this share of the beats, 0 to 1, came no later.
    double quantile(double share) const
    {
        auto left = static_cast<qint64>(static_cast<double>(m_beats) * share);
        std::size_t tenths = 0;
        while (tenths + 1 < m_late.size() && (left -= m_late.at(tenths)) >= 0)
            ++tenths;
        return static_cast<double>(tenths + 1) / 10;
    }
    double longest() const { return m_longest; }
    /// The longest work between two beats since the last call, in milliseconds of the processor: what a stall comes to
    /// on an idle machine.
    double takeLongestWork() { return std::exchange(m_longestWork, 0); }

private:
    static double work()
    {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
    }

    void beat()
    {
        const double late = std::max(0.0, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6 - 1);
        ++m_late.at(std::min(static_cast<std::size_t>(late * 10), m_late.size() - 1));
        ++m_beats;
        m_longest = std::max(m_longest, late);
        m_longestWork = std::max(m_longestWork, work() - m_workAtBeat);
        beginAnew();
    }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    std::array<qint64, 20'000> m_late{}; ///< how many came so many tenths of a millisecond late
    qint64 m_beats = 0;
    double m_longest = 0;
    double m_workAtBeat = 0;
    double m_longestWork = 0;
};
