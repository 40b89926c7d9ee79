#pragma once

#include <QtGlobal>

#include <chrono>
#include <deque>
#include <map>
#include <optional>

/// Whom the simulated server ignores because of haste. It keeps no clock: the time is handed in, and later calls never
/// go back. Clients are told apart by their IPv4 address. Not safe for use from several threads at once.
class DemoRateLimit
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds LockoutWindow{30}; ///< in which the requests are counted
    static constexpr std::chrono::seconds LockoutTime{180};  ///< how long a client is ignored then
    static constexpr std::size_t MaximumClients = 256;       ///< the one that was quiet for longest makes room

    /// Counts a request, right or wrong, from `client`. What a client sends while it is locked out counts for nothing.
    /// @param most  requests within the window; 0 locks nobody out.
    /// @return whether it is to be ignored.
    bool locksOut(quint32 client, int most, TimePoint now);

    /// @param distance  from the last request of `client` that was let through; 0 lets all through.
    /// @return whether the request is to be ignored; one that is not counts as answered now.
    bool throttles(quint32 client, std::chrono::milliseconds distance, TimePoint now);

    void clear() { m_clients.clear(); }
    std::size_t clientCount() const { return m_clients.size(); }

private:
    struct Client {
        std::deque<TimePoint> requests; ///< of the window, oldest first
        TimePoint lockedUntil{};
        std::optional<TimePoint> lastAnswered;
        TimePoint lastHeard{};
    };

    Client &find(quint32 client, TimePoint now);

    std::map<quint32, Client> m_clients;
};
