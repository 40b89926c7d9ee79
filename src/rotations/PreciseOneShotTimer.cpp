#include "PreciseOneShotTimer.h"

#include <algorithm>
#include <limits>
#include <utility>

PreciseOneShotTimer::PreciseOneShotTimer()
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { fire(); });
}

void PreciseOneShotTimer::start(qint64 seconds, std::function<void()> fired)
{
    constexpr qint64 longest = std::numeric_limits<int>::max() / 1000; // QTimer counts milliseconds in an int
    m_fired = std::move(fired);
    m_timer.start(static_cast<int>(std::clamp<qint64>(seconds, 0, longest) * 1000));
}

void PreciseOneShotTimer::stop()
{
    m_timer.stop();
    m_fired = nullptr;
}

std::optional<std::chrono::milliseconds> PreciseOneShotTimer::remaining() const
{
    if (!m_timer.isActive())
        return std::nullopt;
    return std::max(m_timer.remainingTimeAsDuration(), std::chrono::milliseconds(0));
}

void PreciseOneShotTimer::fire()
{
    // What is called may start the timer anew.
    if (const std::function<void()> fired = std::exchange(m_fired, nullptr))
        fired();
}
