#pragma once

class Preferences;
class QHeaderView;
class QString;

/// Widths, order and sorting of a table's columns, kept in the preferences under `key`.
void saveColumns(Preferences &preferences, const QString &key, const QHeaderView &header);
/// Where nothing that can be read is kept under `key`, the columns stay as they are.
void restoreColumns(const Preferences &preferences, const QString &key, QHeaderView &header);
