#include "RotationLabels.h"

#include <QCoreApplication>

namespace
{
struct Text {
    Q_DECLARE_TR_FUNCTIONS(RotationLabels)
};
} // namespace

RotationLabels mapRotationLabels()
{
    return {QStringLiteral("MapRotation"),
            Text::tr("New Map Rotation"),
            Text::tr("Save Map Rotation As"),
            Text::tr("Open Map Rotation"),
            Text::tr("Delete Map Rotations"),
            Text::tr("Unable to Add New Map Rotation"),
            Text::tr("Map Rotation '%1' already exists!"),
            Text::tr("Rotation builder"),
            QStringLiteral("mapRotationPreviewTableView"),
            Text::tr("No maps yet. Press \"Add Map…\" to add one, or \"Open…\" for a saved rotation."),
            false};
}

RotationLabels messageRotationLabels()
{
    return {QStringLiteral("MessageRotation"),
            Text::tr("New Message Rotation"),
            Text::tr("Save Message Rotation As"),
            Text::tr("Open Message Rotation"),
            Text::tr("Delete Message Rotations"),
            Text::tr("Unable to Add New Message Rotation"),
            Text::tr("Message Rotation '%1' already exists!"),
            Text::tr("Messages"),
            QStringLiteral("messageRotationTableView"),
            Text::tr("No messages yet. Press \"Add Message…\" to add one, or \"Open…\" for a saved rotation."),
            true};
}
