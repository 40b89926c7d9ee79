#include "Heartbeat.h"

#include <algorithm>

#include <ctime>

void Durations::add(double milliseconds)
{
    ++m_count;
    m_longest = std::max(m_longest, milliseconds);
    const auto tenths = static_cast<std::size_t>(milliseconds * 10);
    ++m_tenths[std::min(tenths, m_tenths.size() - 1)];
}

double Durations::percentile(double share) const
{
    qint64 left = static_cast<qint64>(static_cast<double>(m_count) * share);
    for (std::size_t tenths = 0; tenths < m_tenths.size(); ++tenths) {
        left -= m_tenths[tenths];
        if (left < 0)
            return static_cast<double>(tenths + 1) / 10;
    }
    return m_longest;
}

/// Milliseconds that this thread has computed so far.
static double ownTime()
{
    timespec time{};
    if (::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) != 0)
        return 0;
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Heartbeat::Heartbeat()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { beat(); });
}

void Heartbeat::start()
{
    beginAnew();
    m_timer.start();
}

void Heartbeat::beginAnew()
{
    m_sinceBeat.start();
    m_workAtBeat = ownTime();
}

void Heartbeat::beat()
{
    m_stalls.add(std::max(0.0, static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6 - 1.0));
    m_ownWork.add(std::max(0.0, ownTime() - m_workAtBeat));
    beginAnew();
}
