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

/// Most numbers are a few digits: tables sort by thousands of them.
static std::optional<qint64> shortNumber(const QString &text)
{
    constexpr qsizetype mostDigits = 18; // as many always fit
    if (text.isEmpty() || text.size() > mostDigits)
        return std::nullopt;
    qint64 value = 0;
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return std::nullopt;
        value = value * 10 + (c.unicode() - '0');
    }
    return value;
}

std::optional<qint64> parseNumber(const QString &text)
{
    if (const std::optional<qint64> value = shortNumber(text))
        return value;
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
