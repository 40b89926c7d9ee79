#pragma once

#include <QString>

#include <optional>

/// Reads a plain decimal number as people and servers write it, in the C locale or the user's: an optional sign,
/// digits, an optional fraction. Blanks around it are allowed; exponents, hexadecimal and names such as "nan" are not.
/// @return the integer part, or nothing when the text is no number or its integer part does not fit.
std::optional<qint64> parseNumber(const QString &text);
