#pragma once

#include <QStringList>

/// Splits a console line into words as the simulated server's console does: at white space, except between double
/// quotes, which are dropped. A backslash before a quote makes the quote part of the word, unless the line ends there.
/// A missing closing quote is taken to stand at the end.
QStringList demoWords(const QString &line);
