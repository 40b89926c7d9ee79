#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <array>

/// How long each of many things took. Bounded memory, however many there are.
class Durations
{
public:
    void add(double milliseconds);
    /// Milliseconds below which this share of them, 0 to 1, lies; to a tenth.
    double percentile(double share) const;
    double longest() const { return m_longest; }
    qint64 count() const { return m_count; }

private:
    std::array<qint64, 20'000> m_tenths{}; ///< how many took so many tenths of a millisecond
    qint64 m_count = 0;
    double m_longest = 0;
};

/// How long the main loop stands still, by a timer of one millisecond: what a gap between two beats has beyond that.
class Heartbeat
{
public:
    Heartbeat();

    void start();
    void stop() { m_timer.stop(); }
    /// The next gap begins now: what went before was nobody's stall.
    void beginAnew();

    const Durations &stalls() const { return m_stalls; }
    /// What this thread computed in each gap: a stall without what the machine gave to others meanwhile.
    const Durations &ownWork() const { return m_ownWork; }

private:
    void beat();

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    double m_workAtBeat = 0;
    Durations m_stalls;
    Durations m_ownWork;
};
