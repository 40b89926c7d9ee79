#include "ReplaceQuestion.h"

#include "Alerts.h"

#include <QFileInfo>

QCoro::Task<bool> ReplaceQuestion::mayWrite(QString path)
{
    if (!QFileInfo::exists(path))
        co_return true;
    const QString question = tr("\"%1\" exists already. Do you want to replace it?").arg(path);
    const QStringList buttons{tr("Replace"), tr("Cancel")};
    const int pressed = co_await m_alerts.run(tr("Replace File"), question, buttons);
    co_return pressed == 0;
}
