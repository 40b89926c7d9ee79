#include "CommandFailure.h"

#include <QCoreApplication>

static QString tr(const char *text)
{
    return QCoreApplication::translate("CommandFailure", text);
}

QCoro::Task<int> tellOfFailure(Alerts &alerts, const QString &command, const QString &error)
{
    return alerts.run(tr("Remote Command Failure"), tr("'%1' returned an error: %2").arg(command, error));
}
