#include "KelMapRotation.h"

#include <utility>

RotationWords MapRotationKind::words()
{
    return RotationWords{
        KelMapRotation::tr("Unable to Create Map Rotation"),
        KelMapRotation::tr("The map rotation named '%1' already exists!"),
        KelMapRotation::tr("Unable to Delete Map Rotation"),
        KelMapRotation::tr("The map rotation named '%1' does not exist!"),
        KelMapRotation::tr("You have made changes in the Map Rotation which have not been saved.\n\nDo you want to "
                           "save them?"),
        KelMapRotation::tr("Map Rotations Not Loaded"),
        KelMapRotation::tr("Map Rotations Not Saved"),
    };
}

using Row = std::shared_ptr<MapRotationInst>;

static QList<RSRTVArrayController<MapRotationInst>::Column> columns()
{
    return {{KelMapRotation::tr("Map"), [](const Row &row) { return row->map; }, nullptr},
            {KelMapRotation::tr("Gametype"), [](const Row &row) { return row->gametype; }, nullptr}};
}

KelMapRotation::KelMapRotation(Preferences &preferences, Alerts &alerts, const QString &folder, QObject *parent)
    : RotationStoreOf(preferences, alerts, folder, columns(), Dictionary(), parent)
{
}

QCoro::Task<> KelMapRotation::addToRotation(QString map, QString gametype)
{
    const QList<MapRotationInst> added(1, MapRotationInst{map, gametype});
    co_await addEntries(added);
}
