#pragma once

#include <array>
#include <chrono>
#include <optional>

/// Keeps requests that nobody waits for so far apart that the server answers them. Servers that limit requests ignore
/// those that come too soon after the last one that they answered; asking faster would then take longer than asking
/// slowly. It asks no clock, and every time handed in is the steady clock's. Any thread, one at a time.
class Pacer
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    static constexpr std::chrono::milliseconds shortestGap{50}; ///< a server's frame
    static constexpr std::chrono::milliseconds longestGap{2000};

    /// What became of the request that was sent at `sentAt`.
    void answered(TimePoint sentAt);
    void ignored(TimePoint sentAt);
    /// A request that somebody waited for was answered: the next one keeps its distance to it as well.
    void noteOther(TimePoint sentAt) { m_lastAnswered = m_lastSent = sentAt; }

    /// When the next request may be sent; none once the server has shown that it wants to be left alone.
    std::optional<TimePoint> next() const;
    /// The distance that the server seems to want.
    Duration gap() const { return m_gap; }
    /// Whether the distance comes of what was answered and ignored, and not of a rest.
    bool isMeasured() const { return m_isMeasured; }
    bool hasStopped() const { return m_rests > mostRests; }

private:
    static constexpr int mostRests = 2;

    bool hasTrialFailed(Duration distance);
    Duration longestTried() const { return m_gap + m_gap / 4; }
    void noteHaste(Duration distance);
    void slowDown(Duration tooShort);
    void speedUp(TimePoint now);
    void rest(TimePoint now);
    std::optional<Duration> shortestAnswered() const;
    Duration distanceTo(TimePoint sentAt) const;

    Duration m_gap = shortestGap;
    Duration m_gapBefore{}; ///< the one that worked, while a shorter one is tried; else zero
    Duration m_bad{};       ///< the longest distance that was too short
    TimePoint m_badSince;
    Duration m_failedAt{};
    int m_failures = 0; ///< at about m_failedAt, with no answer among them
    int m_score = 0;
    int m_ignoredInARow = 0;
    int m_ignoredInTrial = 0; ///< at the shorter distance that is tried
    int m_answeredInTrial = 0;
    int m_rests = 0;
    bool m_isMeasured = false;
    std::array<std::optional<Duration>, 8> m_distances; ///< of the last requests; none for ignored ones
    std::size_t m_place = 0;
    std::optional<TimePoint> m_lastAnswered; ///< when the last answered request was sent
    std::optional<TimePoint> m_lastSent;
    std::optional<TimePoint> m_restsUntil;
};
