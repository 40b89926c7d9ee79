#include "HostAndPort.h"

HostAndPort splitHostAndPort(const QString &text)
{
    const HostAndPort whole{text.trimmed(), {}};
    if (text.count(QLatin1Char(':')) != 1 || text.contains(QLatin1Char('[')) || text.contains(QLatin1Char(']')))
        return whole;
    const HostAndPort parts{text.section(QLatin1Char(':'), 0, 0).trimmed(),
                            text.section(QLatin1Char(':'), 1).trimmed()};
    return parts.host.isEmpty() || parts.port.isEmpty() ? whole : parts;
}
