#pragma once

#include <QCoroTask>

#include <QStringList>

/// How an alert meets the user.
struct AlertManner {
    int defaultButton = 0;   ///< the button that Return presses
    bool isGoodNews = false; ///< nothing went wrong: no warning sign
};

/// Asks or tells the user something and waits for the answer. Main thread only.
class Alerts
{
public:
    Alerts() = default;
    virtual ~Alerts() = default;
    Alerts(const Alerts &) = delete;
    Alerts &operator=(const Alerts &) = delete;

    /// Shows `title` with `text` below it and resumes when a button was pressed.
    /// @param buttons  the last one is what Escape presses; an empty list means one "OK".
    /// @return the index of the pressed button; dismissing the alert counts as pressing the last one.
    virtual QCoro::Task<int> run(QString title, QString text, QStringList buttons = {}, AlertManner manner = {}) = 0;
};
