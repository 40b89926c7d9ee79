#include "ColumnLayout.h"

#include "Preferences.h"

#include <QHeaderView>

void saveColumns(Preferences &preferences, const QString &key, const QHeaderView &header)
{
    preferences.setValue(key, header.saveState());
}

void restoreColumns(const Preferences &preferences, const QString &key, QHeaderView &header)
{
    const QByteArray state = preferences.value(key).toByteArray();
    if (!state.isEmpty())
        header.restoreState(state);
}
