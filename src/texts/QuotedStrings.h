#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

/// Every double-quoted field of `text`, in order and each still between its quotes. White space at the start of a field
/// is lost; a quote after a backslash belongs to the field and the backslash is dropped; a field without its closing
/// quote is dropped. Any thread.
QStringList quotedStrings(const QString &text);

/// `text` without the `mark`s at both of its ends. Any thread.
QString withoutOuter(QStringView text, QChar mark);

inline QString withoutOuterQuotes(QStringView text)
{
    return withoutOuter(text, QLatin1Char('"'));
}

/// `text` without its colour codes (a caret and a digit). The digits are removed one after another, so a code that a
/// removal puts together goes only if its digit is still to come: "^^12" becomes "", "^^10" becomes "^0". Any thread.
QString stringByStrippingColorCodes(QString text);

/// True when `text` begins with `prefix`. An empty prefix is never found. Any thread.
bool startsWithString(const QString &text, const QString &prefix);
