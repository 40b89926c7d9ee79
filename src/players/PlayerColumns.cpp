#include "PlayerColumns.h"

#include "SortKeys.h"

#include <QCoreApplication>

std::span<const PlayerColumn> playerColumns()
{
    constexpr Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
    constexpr Qt::Alignment right = Qt::AlignRight | Qt::AlignVCenter;
    constexpr int remaining = PlayerColumn::remainingWidth;
    static constexpr PlayerColumn columns[] = {
        {QT_TRANSLATE_NOOP("PlayerColumns", "ID"), &PlayerRow::identifier, &numberSortKey, right, 48},
        {QT_TRANSLATE_NOOP("PlayerColumns", "Name"), &PlayerRow::name, nullptr, left, remaining},
        {QT_TRANSLATE_NOOP("PlayerColumns", "GUID"), &PlayerRow::guid, nullptr, left, 110},
        {QT_TRANSLATE_NOOP("PlayerColumns", "IP"), &PlayerRow::ipaddress, &addressSortKey, left, 170},
        {QT_TRANSLATE_NOOP("PlayerColumns", "Team"), &PlayerRow::team, &numberSortKey, left, 80},
        {QT_TRANSLATE_NOOP("PlayerColumns", "Score"), &PlayerRow::score, &numberSortKey, right, 70},
        {QT_TRANSLATE_NOOP("PlayerColumns", "Ping"), &PlayerRow::ping, &numberSortKey, right, 70},
    };
    return columns;
}

QList<ArrayController<PlayerRow>::Column> playerTableColumns()
{
    QList<ArrayController<PlayerRow>::Column> columns;
    for (const PlayerColumn &column : playerColumns()) {
        ArrayController<PlayerRow>::Column made;
        made.title = QCoreApplication::translate("PlayerColumns", column.heading);
        made.text = [text = column.text](const PlayerRow &player) {
            return player.*text;
        };
        if (column.sortKey != nullptr)
            made.sortKey = [text = column.text, key = column.sortKey](const PlayerRow &player) {
                return key(player.*text);
            };
        made.alignment = column.alignment;
        columns.append(made);
    }
    return columns;
}
