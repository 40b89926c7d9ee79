#include "Pacer.h"

#include <algorithm>

using namespace std::chrono_literals;

static constexpr int scoreOfTrust = 6;
static constexpr int scoreAfterSlowing = 4; // a shorter distance is tried again soon
static constexpr int ignoredBeforeRest = 5;

Pacer::Duration Pacer::distanceTo(TimePoint sentAt) const
{
    return m_lastAnswered ? sentAt - *m_lastAnswered : Duration(longestGap);
}

std::optional<Pacer::Duration> Pacer::shortestAnswered() const
{
    std::optional<Duration> shortest;
    for (const std::optional<Duration> &distance : m_distances) {
        if (distance && (!shortest || *distance < *shortest))
            shortest = distance;
    }
    return shortest;
}

void Pacer::answered(TimePoint sentAt)
{
    const Duration distance = distanceTo(sentAt);
    m_distances.at(m_place++ % m_distances.size()) = distance;
    m_lastAnswered = m_lastSent = sentAt;
    m_ignoredInARow = 0;
    m_answeredInTrial += distance <= longestTried() ? 1 : 0;
    if (distance <= m_failedAt + m_failedAt / 4)
        m_failures = 0;
    if (++m_score >= scoreOfTrust)
        speedUp(sentAt);
}

void Pacer::speedUp(TimePoint now)
{
    m_score = 0;
    if (m_gapBefore > Duration::zero()) { // what was tried has proved itself
        m_gapBefore = Duration::zero();
        m_score = scoreAfterSlowing;
        return;
    }
    while (m_bad > Duration::zero() && now - m_badSince >= 30s) { // limits change
        m_bad /= 2;
        m_badSince += 30s;
    }
    const Duration shorter = std::max({Duration(shortestGap), m_gap / 2, (m_bad + m_gap) / 2});
    if (shorter < m_gap * 9 / 10) {
        m_ignoredInTrial = 0;
        m_answeredInTrial = 0;
        m_gapBefore = m_gap;
        m_gap = shorter;
    }
}

void Pacer::ignored(TimePoint sentAt)
{
    const Duration distance = distanceTo(sentAt);
    const std::optional<Duration> works = shortestAnswered();
    m_distances.at(m_place++ % m_distances.size()) = std::nullopt;
    m_lastSent = sentAt;
    --m_score;
    if (++m_ignoredInARow >= ignoredBeforeRest)
        return rest(sentAt);
    // What was tried has failed, whatever the reason.
    if (m_gapBefore > Duration::zero() && (m_ignoredInARow >= 2 || hasTrialFailed(distance)))
        return slowDown(m_gap);
    const bool isChance = distance >= longestGap || (works && *works <= distance + distance / 10);
    if (!isChance)
        noteHaste(distance);
}

/// The wait for an answer that does not come is distance enough for the next request: what is too short is ignored
/// every other time, and never twice in a row.
bool Pacer::hasTrialFailed(Duration distance)
{
    m_ignoredInTrial += distance <= longestTried() ? 1 : 0;
    return m_ignoredInTrial >= 2 && m_ignoredInTrial > 2 * m_answeredInTrial;
}

void Pacer::noteHaste(Duration distance)
{
    m_failedAt = distance;
    if (++m_failures >= 2) // one alone may have got lost
        slowDown(distance);
}

void Pacer::slowDown(Duration tooShort)
{
    m_isMeasured = true;
    m_bad = tooShort;
    m_badSince = m_lastSent.value_or(TimePoint());
    const std::optional<Duration> works = shortestAnswered();
    if (m_gapBefore > Duration::zero())
        m_gap = m_gapBefore;
    else if (works)
        m_gap = *works + *works / 20;
    else
        m_gap = std::max<Duration>(100ms, 2 * std::max(tooShort, m_gap));
    m_gap = std::min<Duration>(m_gap, longestGap);
    m_gapBefore = Duration::zero();
    m_failures = 0;
    m_score = scoreAfterSlowing;
}

/// Who ignores every distance may count what he ignores, and punish the administrator's own commands for it.
void Pacer::rest(TimePoint now)
{
    m_isMeasured = false;
    ++m_rests;
    m_ignoredInARow = 0;
    m_restsUntil = now + (m_rests == 1 ? 10s : 30s);
    m_gapBefore = Duration::zero();
    m_gap = m_rests == 1 ? 1000ms : Duration(longestGap);
}

std::optional<Pacer::TimePoint> Pacer::next() const
{
    if (hasStopped())
        return std::nullopt;
    if (!m_lastSent)
        return TimePoint();
    const TimePoint next = std::max(*m_lastSent, m_lastAnswered.value_or(*m_lastSent)) + m_gap;
    return m_restsUntil ? std::max(next, *m_restsUntil) : next;
}
