#pragma once

#include "ArrayController.h"
#include "PlayerList.h"

#include <span>

/// A value of a player: a column of the table of players, and of the file that the list is saved to.
struct PlayerColumn {
    const char *heading; ///< as the file has it; the table shows its translation
    QString PlayerRow::*text;
    QVariant (*sortKey)(const QString &text); ///< null sorts by the text
    Qt::Alignment alignment;
    int width; ///< in the table at first, in pixels

    /// The width of the one column that takes the room that the others leave.
    static constexpr int remainingWidth = 0;
};

/// All columns, in the order of the table and of the file.
std::span<const PlayerColumn> playerColumns();

/// The same columns for the table's rows, with their headings translated.
QList<ArrayController<PlayerRow>::Column> playerTableColumns();
