#pragma once

#include "Alerts.h"

/// Counts what the user would be told.
class QuietAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString, QString, QStringList, AlertManner) override
    {
        ++m_count;
        co_return 0;
    }
    int count() const { return m_count; }

private:
    int m_count = 0;
};
