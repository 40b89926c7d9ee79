#pragma once

#include <QString>
#include <QStringView>

#include <optional>
#include <utility>

// What the server says of its variables. Any thread.

/// Name and value of one line of a dump; nothing for a line that tells of none, or of an empty value: that is asked for
/// by name.
std::optional<std::pair<QString, QString>> dumpedDvar(QStringView line);

/// The value in force that the reply to a variable's name tells, nothing if it is none: three quoted fields, name,
/// value and value in force. The same fields once more are the same reply, doubled by the network or given to a
/// repeated request as well.
std::optional<QString> toldValue(const QString &reply);

/// Whether the server says that it has no such variable.
bool isUnknownDvar(const QString &reply);
