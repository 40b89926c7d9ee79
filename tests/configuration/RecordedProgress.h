#pragma once

#include "Progress.h"

#include <QList>

#include <utility>

/// Writes down what a task tells of its progress, and cancels the task for the test.
class RecordedProgress final : public Progress
{
public:
    void begin(const QString &title, std::function<void()> cancel) override
    {
        m_title = title;
        m_cancel = std::move(cancel);
        m_steps.clear();
        m_isShown = true;
    }
    void setDone(qsizetype done, qsizetype total) override
    {
        if (m_isShown)
            m_steps.append({done, total});
    }
    void end() override { m_isShown = false; }

    void cancel() { m_cancel(); }
    bool isShown() const { return m_isShown; }
    QString title() const { return m_title; }
    /// How far of how many, of the latest task.
    QList<std::pair<qsizetype, qsizetype>> steps() const { return m_steps; }

private:
    QString m_title;
    std::function<void()> m_cancel;
    QList<std::pair<qsizetype, qsizetype>> m_steps;
    bool m_isShown = false;
};
