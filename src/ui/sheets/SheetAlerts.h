#pragma once

#include "Alerts.h"

#include <QPointer>
#include <QWidget>

/// Shows alerts as sheets on the window; the rest of the program lives on while one is open.
class SheetAlerts final : public Alerts
{
public:
    /// The window to which later alerts belong; null while there is none.
    void setWindow(QWidget *window) { m_window = window; }

    QCoro::Task<int> run(QString title, QString text, QStringList buttons = {}, AlertManner manner = {}) override;

private:
    QPointer<QWidget> m_window;
};
