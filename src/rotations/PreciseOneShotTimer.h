#pragma once

#include "OneShotTimer.h"

#include <QTimer>

/// Fires within milliseconds of its time. Waits that are longer than about 24 days are cut to that.
class PreciseOneShotTimer final : public OneShotTimer
{
public:
    PreciseOneShotTimer();

    void start(qint64 seconds, std::function<void()> fired) override;
    void stop() override;
    std::optional<std::chrono::milliseconds> remaining() const override;

private:
    void fire();

    QTimer m_timer;
    std::function<void()> m_fired;
};
