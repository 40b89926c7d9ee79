#pragma once

#include "PlayerList.h"

#include <QByteArray>

/// The file that a player list is saved to: `dateText` stands in its head.
/// @param isCommaSeparated  values with commas between them and without quotes; otherwise columns padded with blanks,
///                          whose widths are counted in characters and applied to UTF-8 bytes.
QByteArray playerListText(const QList<PlayerRow> &players, bool isCommaSeparated, const QString &dateText);

/// Writes the list to `path`, comma-separated when its extension is "csv" in any case. Replaces the file whole:
/// on failure an older file is as it was.
/// @return whether it is written; otherwise `error`, if given, tells why.
bool savePlayerList(const QList<PlayerRow> &players, const QString &path, QString *error = nullptr);
