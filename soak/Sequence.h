#pragma once

#include <QList>
#include <QString>

/// One text that was to come, and how often it may.
struct ExpectedText {
    QString text; ///< a text that ends with "***" stands for any that begins as it does
    int least = 0;
    int most = 1;
};

/// Looks whether texts came in the order in which they were to come, none too seldom and none too often.
/// @return what does not fit, for people; empty when all fits.
QString sequenceFault(const QList<ExpectedText> &expected, const QStringList &observed);
