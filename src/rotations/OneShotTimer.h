#pragma once

#include <QtGlobal>

#include <chrono>
#include <functional>
#include <optional>

/// A timer that fires once. Starting it anew replaces what it waits for. Main thread only.
class OneShotTimer
{
public:
    OneShotTimer() = default;
    virtual ~OneShotTimer() = default;
    OneShotTimer(const OneShotTimer &) = delete;
    OneShotTimer &operator=(const OneShotTimer &) = delete;

    /// Calls `fired` in `seconds`, from the event loop; at once for a negative number.
    virtual void start(qint64 seconds, std::function<void()> fired) = 0;
    virtual void stop() = 0;
    /// How long until it fires; nothing when it is stopped.
    virtual std::optional<std::chrono::milliseconds> remaining() const = 0;
};
