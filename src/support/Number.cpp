#include "Number.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

static std::optional<qint64> integerPart(const QLocale &locale, const QString &text)
{
    bool isExact = false;
    const qint64 whole = locale.toLongLong(text, &isExact);
    if (isExact)
        return whole;
    bool isNumber = false;
    const double value = locale.toDouble(text, &isNumber);
    constexpr double limit = 9007199254740992.0; // above this a double no longer tells neighbouring integers apart
    if (!isNumber || !std::isfinite(value) || std::abs(value) >= limit)
        return std::nullopt;
    return static_cast<qint64>(value);
}

std::optional<qint64> parseNumber(const QString &text)
{
    const QString trimmed = text.trimmed();
    const bool hasLetters = std::any_of(trimmed.begin(), trimmed.end(), [](QChar c) { return c.isLetter(); });
    if (trimmed.isEmpty() || hasLetters)
        return std::nullopt;
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    if (const std::optional<qint64> value = integerPart(plain, trimmed))
        return value;
    return integerPart(QLocale(), trimmed);
}
