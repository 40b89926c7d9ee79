#include "CommandFailure.h"

#include <QCoreApplication>

QCoro::Task<int> tellOfFailure(Alerts &alerts, const QString &command, const QString &error)
{
    const QString title = QCoreApplication::translate("CommandFailure", "Remote Command Failure");
    const QString text =
        QCoreApplication::translate("CommandFailure", "'%1' returned an error: %2").arg(command, error);
    return alerts.run(title, text);
}
