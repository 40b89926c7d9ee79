#pragma once

#include <QString>

#include <functional>

/// Shows how far a long task has come, and lets the user ask it to stop. One task at a time. Main thread only.
class Progress
{
public:
    Progress() = default;
    virtual ~Progress() = default;
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    /// Shows `title` and that nothing is done yet, until end().
    /// @param cancel  called at most once, when the user asks the task to stop. The task goes on until it looks.
    virtual void begin(const QString &title, std::function<void()> cancel) = 0;
    /// `done` of `total` steps. After end(): nothing.
    virtual void setDone(qsizetype done, qsizetype total) = 0;
    /// Shows nothing any more; also when nothing has begun.
    virtual void end() = 0;
};
