#pragma once

#include <QCoroTask>

#include <QTest>

#include <exception>
#include <memory>
#include <optional>

/// Waits in a test for a task, and gives up after a while instead of hanging; also when the task throws.
/// @return its value, or a value-initialised one after a failure that has been reported.
template <typename T>
T awaited(QCoro::Task<T> task)
{
    const auto result = std::make_shared<std::optional<T>>();
    // Without captures, so that nothing dies with the closure: what it uses is handed in.
    const auto follow = [](QCoro::Task<T> followed, std::shared_ptr<std::optional<T>> kept) -> QCoro::Task<> {
        T value = co_await followed;
        *kept = std::move(value);
    };
    const QCoro::Task<> detached = follow(std::move(task), result);
    if (!QTest::qWaitFor([&] { return result->has_value(); }, 60000))
        qFatal("the task has not ended");
    return std::move(**result);
}

inline void awaited(QCoro::Task<> task)
{
    const auto isDone = std::make_shared<bool>(false);
    const auto follow = [](QCoro::Task<> followed, std::shared_ptr<bool> kept) -> QCoro::Task<> {
        co_await followed;
        *kept = true;
    };
    const QCoro::Task<> detached = follow(std::move(task), isDone);
    if (!QTest::qWaitFor([&] { return *isDone; }, 60000))
        qFatal("the task has not ended");
}
