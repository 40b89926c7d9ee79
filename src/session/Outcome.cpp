#include "Outcome.h"

#include <QFileInfo>

Outcome Outcome::saved(const QString &action, const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    return Outcome{Kind::File, action, {name}, tr("Saved \"%1\"").arg(name), true, QDateTime::currentDateTime()};
}

QString Outcome::summary() const
{
    if (isSuccess && !text.isEmpty())
        return text;
    const QString whom = targets.join(tr(", "));
    const QString what = whom.isEmpty() ? action : tr("%1 (%2)").arg(action, whom);
    return isSuccess ? tr("%1: done").arg(what) : tr("%1 failed: %2").arg(what, text);
}
