#pragma once

#include <bitset>
#include <chrono>
#include <optional>

/// What the requests so far tell of the line to one server: its round trip, how long a first send is worth waiting for,
/// how much gets lost. It asks no clock. Any thread, one at a time.
class LinkStats
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    static constexpr std::chrono::milliseconds shortestWait{500};
    static constexpr std::chrono::milliseconds longestWait{3000};
    static constexpr unsigned windowSize = 32; ///< of first sends that count for unanswered()

    /// The first send was answered: the only kind of answer that tells the round trip.
    void answered(Duration roundTrip, TimePoint now);
    /// The first send was answered, and the answer had to wait until it was read: its round trip is not known.
    void answeredUnmeasured(TimePoint now);
    /// An answer came after the request had been repeated, and it is not known which send it answers. The first wait
    /// was too short, or something was lost.
    /// @param sinceFirstSend  the longest that the round trip can be.
    void answeredAmbiguously(Duration sinceFirstSend, TimePoint now);
    /// Nothing came at all.
    void remainedUnanswered();
    void countStrangers(unsigned count) { m_strangers += count; }
    void countDoubled(unsigned count) { m_doubled += count; }
    void countLate() { ++m_late; }

    /// How long to wait for an answer before a request is repeated.
    Duration firstWait() const;
    /// Smoothed; none before the first answer.
    std::optional<Duration> roundTrip() const { return m_smoothed; }
    std::optional<TimePoint> lastHeard() const { return m_lastHeard; }
    /// First sends without an answer, among the last sends() ones.
    unsigned unanswered() const { return static_cast<unsigned>(m_unanswered.count()); }
    unsigned sends() const { return m_sends; }
    unsigned strangers() const { return m_strangers; } ///< datagrams from other addresses
    unsigned doubled() const { return m_doubled; }
    unsigned late() const { return m_late; } ///< datagrams after the end of their reply

private:
    void countSend(bool isUnanswered);

    std::optional<Duration> m_smoothed;
    Duration m_variation{};
    Duration m_backOff{}; ///< zero once an answer has told the round trip
    std::optional<TimePoint> m_lastHeard;
    std::bitset<windowSize> m_unanswered;
    unsigned m_sends = 0;
    unsigned m_strangers = 0;
    unsigned m_doubled = 0;
    unsigned m_late = 0;
};
