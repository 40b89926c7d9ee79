#pragma once

#include <chrono>
#include <deque>
#include <optional>

/// Whom the simulated server ignores because of haste: everybody, as it listens on this machine only. It keeps no
/// clock: the time is handed in, and later calls never go back.
class DemoRateLimit
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds LockoutWindow{30}; ///< in which the requests are counted
    static constexpr std::chrono::seconds LockoutTime{180};  ///< how long requests are ignored then

    /// Counts a request, right or wrong. What comes during a lockout counts for nothing.
    /// @param most  requests within the window; 0 locks nobody out.
    /// @return whether it is to be ignored.
    bool locksOut(int most, TimePoint now)
    {
        if (most <= 0)
            return false;
        if (now < m_lockedUntil)
            return true;
        while (!m_requests.empty() && now - m_requests.front() >= LockoutWindow)
            m_requests.pop_front();
        m_requests.push_back(now);
        if (m_requests.size() <= static_cast<std::size_t>(most))
            return false;
        m_requests.clear();
        m_lockedUntil = now + LockoutTime;
        return true;
    }

    /// @param distance  from the last request that was let through; 0 lets all through.
    /// @return whether the request is to be ignored; one that is not counts as answered now.
    bool throttles(std::chrono::milliseconds distance, TimePoint now)
    {
        if (distance <= distance.zero())
            return false;
        if (m_lastAnswered && now - *m_lastAnswered < distance)
            return true;
        m_lastAnswered = now;
        return false;
    }

private:
    std::deque<TimePoint> m_requests; ///< of the window, oldest first
    TimePoint m_lockedUntil{};
    std::optional<TimePoint> m_lastAnswered;
};
