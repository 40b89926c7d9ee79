#include "DemoRateLimit.h"

#include <algorithm>

bool DemoRateLimit::locksOut(quint32 client, int most, TimePoint now)
{
    if (most <= 0)
        return false;
    Client &known = find(client, now);
    if (now < known.lockedUntil)
        return true;
    while (!known.requests.empty() && now - known.requests.front() >= LockoutWindow)
        known.requests.pop_front();
    known.requests.push_back(now);
    if (known.requests.size() <= static_cast<std::size_t>(most))
        return false;
    known.requests.clear();
    known.lockedUntil = now + LockoutTime;
    return true;
}

bool DemoRateLimit::throttles(quint32 client, std::chrono::milliseconds distance, TimePoint now)
{
    if (distance <= std::chrono::milliseconds::zero())
        return false;
    Client &known = find(client, now);
    if (known.lastAnswered && now - *known.lastAnswered < distance)
        return true;
    known.lastAnswered = now;
    return false;
}

DemoRateLimit::Client &DemoRateLimit::find(quint32 client, TimePoint now)
{
    // Addresses can be invented: their number must not fill the memory.
    if (m_clients.size() >= MaximumClients && !m_clients.contains(client)) {
        m_clients.erase(std::min_element(m_clients.begin(), m_clients.end(), [](const auto &a, const auto &b) {
            return a.second.lastHeard < b.second.lastHeard;
        }));
    }
    Client &found = m_clients[client];
    found.lastHeard = now;
    return found;
}
