#include "KelMapRotation.h"

static RotationKind mapRotationKind()
{
    return {
        .name = QStringLiteral("MapRotation"),
        .fileName = QStringLiteral("FerrowRcon.exe.maprotate"),
        .currentRotationKey = QStringLiteral("currentMapRotationName"),
        .creationRefused = KelMapRotation::tr("Unable to Create Map Rotation"),
        .alreadyExists = KelMapRotation::tr("The map rotation named '%1' already exists!"),
        .deletionRefused = KelMapRotation::tr("Unable to Delete Map Rotation"),
        .doesNotExist = KelMapRotation::tr("The map rotation named '%1' does not exist!"),
        .saveQuestion = KelMapRotation::tr("You have made changes in the Map Rotation which have not been saved.\n\n"
                                           "Do you want to save them?"),
        .loadFailed = KelMapRotation::tr("Map Rotations Not Loaded"),
        .saveFailed = KelMapRotation::tr("Map Rotations Not Saved"),
        .newTitle = KelMapRotation::tr("New Map Rotation"),
        .saveAsTitle = KelMapRotation::tr("Save Map Rotation As"),
        .openTitle = KelMapRotation::tr("Open Map Rotation"),
        .deleteTitle = KelMapRotation::tr("Delete Map Rotations"),
        .nameRefused = KelMapRotation::tr("Unable to Add New Map Rotation"),
        .nameTaken = KelMapRotation::tr("Map Rotation '%1' already exists!"),
        .tableName = KelMapRotation::tr("Rotation builder"),
        .tableObjectName = QStringLiteral("mapRotationPreviewTableView"),
        .placeholder =
            KelMapRotation::tr("No maps yet. Press \"Add Map…\" to add one, or \"Open…\" for a saved rotation."),
    };
}

KelMapRotation::KelMapRotation(Preferences &preferences, Alerts &alerts, const QString &folder, QObject *parent)
    : RotationStoreOf(mapRotationKind(), preferences, alerts, folder, Dictionary(), parent)
{
}

QCoro::Task<> KelMapRotation::addToRotation(QString map, QString gametype)
{
    const QList<MapRotationInst> added(1, MapRotationInst{map, gametype});
    co_await addEntries(added);
}
