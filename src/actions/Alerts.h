#pragma once

#include <QCoroTask>

#include <QStringList>

/// Asks or tells the user something and waits for the answer. Main thread only.
class Alerts
{
public:
    Alerts() = default;
    virtual ~Alerts() = default;
    Alerts(const Alerts &) = delete;
    Alerts &operator=(const Alerts &) = delete;

    /// Shows `title` with `text` below it and resumes when a button was pressed.
    /// @param buttons  from the default one on; an empty list means one "OK".
    /// @return the index of the pressed button; dismissing the alert counts as pressing the last one.
    virtual QCoro::Task<int> run(QString title, QString text, QStringList buttons = {}) = 0;
};
