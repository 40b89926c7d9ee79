#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <algorithm>

/// The keys of a QMap or QHash with text keys, sorted without regard to case. Keys that differ in case alone are
/// ordered by their characters, so that the order is the same every time.
template <typename Dictionary>
QStringList sortedKeys(const Dictionary &dictionary)
{
    QStringList keys = dictionary.keys();
    std::sort(keys.begin(), keys.end(), [](const QString &left, const QString &right) {
        const int order = left.compare(right, Qt::CaseInsensitive);
        return order == 0 ? left < right : order < 0;
    });
    return keys;
}

/// The values of a QMap or QHash with text keys, in the order of sortedKeys().
template <typename Dictionary>
QList<typename Dictionary::mapped_type> valuesSortedByKey(const Dictionary &dictionary)
{
    const QStringList keys = sortedKeys(dictionary);
    QList<typename Dictionary::mapped_type> values;
    values.reserve(keys.size());
    for (const QString &key : keys)
        values.append(dictionary.value(key));
    return values;
}
