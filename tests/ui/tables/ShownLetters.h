#pragma once

#include "KeyHandlingTableView.h"
#include "Letters.h"

#include <QTest>

/// A table of letters in a window of its own, ready for mouse and keys.
template <typename Entry>
struct ShownLetters {
    explicit ShownLetters(const QString &letters) : rows(letters)
    {
        table.setModel(rows.arranged());
        table.setSelectionModel(rows.selection());
        table.setRows(&rows);
        table.resize(300, 300);
        table.show();
        table.activateWindow();
        table.setFocus();
        (void)QTest::qWaitForWindowActive(&table);
    }

    /// A point of the row, at its upper or lower half; of the place below the last row for a row that is none.
    QPoint at(int row, bool isLower = false) const
    {
        const int height = table.rowHeight(0);
        return {60, table.rowViewportPosition(0) + row * height + (isLower ? 3 * height / 4 : height / 4)};
    }
    Letters<Entry> rows;
    KeyHandlingTableView table;
};
