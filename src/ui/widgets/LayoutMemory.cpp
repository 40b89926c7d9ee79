#include "LayoutMemory.h"

#include "Preferences.h"

#include <QDataStream>
#include <QHeaderView>
#include <QSplitter>
#include <QTableView>
#include <QTreeView>

#include <algorithm>

/// Where versions before kept the state of a part.
struct FormerPlace {
    const char *name;
    const char *key;
    int index; ///< in a list of states that follow each other; -1 for the state alone
};

static constexpr int alone = -1;

static constexpr FormerPlace formerPlaces[] = {
    {"mainSplitter", "window/splitter", alone},
    {"savedServerTableView", "window/savedServers", alone},
    {"playersTableView", "window/playersTable", alone},
    {"mapServerRotationTableView", "window/serverRotation", alone},
    {"mapRotationPreviewTableView", "window/rotationBuilder", alone},
    {"messageRotationTableView", "window/messages", alone},
    {"configBuilderGeneralSettingsTable", "window/configGroups", alone},
    {"configBuilderGametypeSettingsTable", "window/configGametypes", alone},
    {"playlistsTableView", "window/playlists", 0},
    {"exclusionsTableView", "window/playlists", 1},
    {"settingsHalves", "window/unrankedSettings", 0},
    {"unrankedSettingsPair", "window/unrankedSettings", 1},
    {"gametypePair", "window/unrankedSettings", 2},
    {"unrankedOutlineView", "window/unrankedSettings", 3},
    {"gametypeOutlineView", "window/unrankedSettings", 4},
    {"rankedSettingsPair", "window/rankedSettings", 1}, // after splitters with nothing to divide
    {"rankedOutlineView", "window/rankedSettings", 2},
};

static QString keyOf(const QObject &part)
{
    return QStringLiteral("window/") + part.objectName();
}

/// Empty if the bytes are damaged: then nothing in them is certain.
static QList<QByteArray> statesIn(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    QList<QByteArray> states;
    while (!stream.atEnd()) {
        QByteArray state;
        stream >> state;
        if (stream.status() != QDataStream::Ok)
            return {};
        states.append(state);
    }
    return states;
}

static QByteArray keptState(const QObject &part, const Preferences &preferences)
{
    const QByteArray state = preferences.value(keyOf(part)).toByteArray();
    if (!state.isEmpty())
        return state;
    const auto *former =
        std::find_if(std::begin(formerPlaces), std::end(formerPlaces),
                     [&part](const FormerPlace &place) { return part.objectName() == QLatin1String(place.name); });
    if (former == std::end(formerPlaces))
        return {};
    const QByteArray bytes = preferences.value(QLatin1String(former->key)).toByteArray();
    return former->index == alone ? bytes : statesIn(bytes).value(former->index);
}

/// The parts of the type that stand in `window` itself and not in a sheet of its.
template <typename Part>
static QList<Part *> partsOf(const QWidget &window)
{
    QList<Part *> parts = window.findChildren<Part *>();
    parts.removeIf(
        [&window](const Part *part) { return part->objectName().isEmpty() || part->window() != window.window(); });
    return parts;
}

static QHeaderView *columnsOf(const QTableView &table)
{
    return table.horizontalHeader();
}

static QHeaderView *columnsOf(const QTreeView &outline)
{
    return outline.header();
}

template <typename View>
static void restoreColumns(const QWidget &window, const Preferences &preferences)
{
    for (const View *view : partsOf<View>(window)) {
        const QByteArray state = keptState(*view, preferences);
        if (!state.isEmpty())
            columnsOf(*view)->restoreState(state);
    }
}

template <typename View>
static void saveColumns(const QWidget &window, Preferences &preferences)
{
    for (const View *view : partsOf<View>(window))
        preferences.setValue(keyOf(*view), columnsOf(*view)->saveState());
}

void LayoutMemory::restore(QWidget &window, const Preferences &preferences)
{
    restoreColumns<QTableView>(window, preferences);
    restoreColumns<QTreeView>(window, preferences);
    for (QSplitter *splitter : partsOf<QSplitter>(window))
        splitter->restoreState(keptState(*splitter, preferences));
}

void LayoutMemory::save(const QWidget &window, Preferences &preferences)
{
    saveColumns<QTableView>(window, preferences);
    saveColumns<QTreeView>(window, preferences);
    for (const QSplitter *splitter : partsOf<QSplitter>(window))
        preferences.setValue(keyOf(*splitter), splitter->saveState());
}
