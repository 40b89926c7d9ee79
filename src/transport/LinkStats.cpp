#include "LinkStats.h"

#include <algorithm>

using namespace std::chrono_literals;

void LinkStats::answered(Duration roundTrip, TimePoint now)
{
    if (!m_smoothed) {
        m_smoothed = roundTrip;
        m_variation = roundTrip / 2;
    } else {
        m_variation = (3 * m_variation + std::chrono::abs(*m_smoothed - roundTrip)) / 4;
        m_smoothed = (7 * *m_smoothed + roundTrip) / 8;
    }
    m_backOff = Duration::zero();
    m_lastHeard = now;
    countSend(false);
}

void LinkStats::answeredUnmeasured(TimePoint now)
{
    m_lastHeard = now;
    countSend(false);
}

void LinkStats::answeredAmbiguously(Duration sinceFirstSend, TimePoint now)
{
    // Kept until an answer to a first send tells the round trip: a line slower than the first wait would never be
    // learnt otherwise, and every command would be carried out twice.
    m_backOff = std::max(2 * firstWait(), sinceFirstSend + sinceFirstSend / 4);
    m_lastHeard = now;
    countSend(true);
}

void LinkStats::remainedUnanswered()
{
    countSend(true);
}

LinkStats::Duration LinkStats::firstWait() const
{
    Duration wait = std::max<Duration>(shortestWait, m_backOff);
    if (m_smoothed)
        wait = std::max(wait, *m_smoothed + std::max<Duration>(4 * m_variation, 50ms));
    return std::min<Duration>(wait, longestWait);
}

void LinkStats::countSend(bool isUnanswered)
{
    m_unanswered <<= 1;
    m_unanswered[0] = isUnanswered;
    m_sends = std::min(m_sends + 1, windowSize);
}
