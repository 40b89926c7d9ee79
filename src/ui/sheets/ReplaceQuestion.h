#pragma once

#include <QCoroTask>

#include <QCoreApplication>
#include <QString>

class Alerts;

/// Asks before a file is replaced. Main thread only.
class ReplaceQuestion
{
    Q_DECLARE_TR_FUNCTIONS(ReplaceQuestion)
public:
    /// `alerts` outlives the question, and the question its answer.
    explicit ReplaceQuestion(Alerts &alerts) : m_alerts(alerts) {}

    /// @return whether `path` may be written: nothing is there, or the user wants it replaced.
    QCoro::Task<bool> mayWrite(QString path);

private:
    Alerts &m_alerts;
};
