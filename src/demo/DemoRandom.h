#pragma once

#include <QtGlobal>

#include <random>

/// The chance in the simulated game. The arithmetic is spelt out because the distributions of the standard library
/// differ between its makers, and a seed must give the same game everywhere.
class DemoRandom
{
public:
    explicit DemoRandom(quint64 seed) : m_engine(seed) {}

    /// @return a number from 0 to `bound` - 1; `bound` is at least 1.
    int below(int bound) { return static_cast<int>(m_engine() % static_cast<quint64>(bound)); }
    int between(int lowest, int highest) { return lowest + below(highest - lowest + 1); }
    bool oneIn(int count) { return below(count) == 0; }
    /// @param probability  from 0 (never) to 1 (always).
    bool happens(double probability) { return static_cast<double>(m_engine() >> 11) * 0x1p-53 < probability; }

private:
    std::mt19937_64 m_engine;
};
