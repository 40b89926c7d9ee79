#pragma once

#include <QHash>
#include <QString>
#include <QStringView>

#include <optional>
#include <utility>

// What the server says of its variables. Any thread.

/// Variable name to value.
using DvarTable = QHash<QString, QString>;

/// A game server has a few thousand variables; what dumps more is none.
inline constexpr qsizetype mostDumpedDvars = 100'000;

/// Name and value of one line of a dump; nothing for a line that tells of none, or of an empty value: that is asked for
/// by name.
std::optional<std::pair<QString, QString>> dumpedDvar(QStringView line);

/// Takes what the lines of a dump tell into `dvars`; no new variable when it holds mostDumpedDvars.
void takeDump(QStringView dump, DvarTable *dvars);

/// The value in force that the reply to a variable's name tells, nothing if it is none: three quoted fields, name,
/// value and value in force. The same fields once more are the same reply, doubled by the network or given to a
/// repeated request as well.
std::optional<QString> toldValue(const QString &reply);

/// Whether the server says that it has no such variable.
bool isUnknownDvar(const QString &reply);

/// Whether the server answers to a write that the variable cannot have this value.
bool isValueRefused(const QString &reply);
