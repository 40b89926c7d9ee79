#pragma once

#include "Alerts.h"

/// Tells that the server did not take a command, or the value of a variable. Resumes when the alert has been closed.
/// @param command  what was sent, by the name that the alert shows.
/// @param alerts   outlives the alert.
QCoro::Task<int> tellOfFailure(Alerts &alerts, const QString &command, const QString &error);
