#pragma once

#include <QString>
#include <QVariant>

/// @return what `text` sorts by in a column of numbers: the number, or the text itself where it is none.
QVariant numberSortKey(const QString &text);
/// @return what an "a.b.c.d:port" text sorts by: address, then port; the text itself where it is no address.
QVariant addressSortKey(const QString &text);
