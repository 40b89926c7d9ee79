#pragma once

#include <QList>
#include <QStringList>

/// Rows of a table as a text for the clipboard: one a line, their columns separated by tabs.
namespace RowsText
{
/// A text as one column of one line: what would end either becomes a blank.
QString asCell(QString text);
QString fromRows(const QList<QStringList> &rows);
/// The lines of a text from anywhere, without what ends them.
QStringList linesOf(const QString &text);
QStringList columnsOf(const QString &line);
} // namespace RowsText
