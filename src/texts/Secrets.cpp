#include "Secrets.h"

bool holdsPassword(const QString &dvar)
{
    return dvar.contains(QLatin1String("password"), Qt::CaseInsensitive);
}
