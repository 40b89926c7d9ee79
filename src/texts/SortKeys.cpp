#include "SortKeys.h"

#include "Number.h"

#include <QStringList>

QVariant numberSortKey(const QString &text)
{
    if (const std::optional<qint64> number = parseNumber(text))
        return *number;
    return text;
}

QVariant addressSortKey(const QString &text)
{
    const QStringList hostAndPort = text.split(QLatin1Char(':'));
    const QStringList bytes = hostAndPort.first().split(QLatin1Char('.'));
    if (bytes.size() != 4 || hostAndPort.size() > 2)
        return text;
    qint64 key = 0;
    for (const QString &byte : bytes) {
        bool isNumber = false;
        const uint value = byte.toUInt(&isNumber);
        if (!isNumber || value > 255)
            return text;
        key = key * 256 + value;
    }
    const uint port = hostAndPort.size() == 2 ? hostAndPort.last().toUShort() : 0U;
    return key * 65536 + port;
}
