#include "RotationLabels.h"

#include <QCoreApplication>

static QString tr(const char *text)
{
    return QCoreApplication::translate("RotationLabels", text);
}

RotationLabels mapRotationLabels()
{
    return {QStringLiteral("MapRotation"),
            tr("New Map Rotation"),
            tr("Save Map Rotation As"),
            tr("Open Map Rotation"),
            tr("Delete Map Rotations"),
            tr("Unable to Add New Map Rotation"),
            tr("Map Rotation '%1' already exists!"),
            tr("Rotation builder"),
            QStringLiteral("mapRotationPreviewTableView"),
            tr("No maps yet. Press \"Add Map…\" to add one, or \"Open…\" for a saved rotation."),
            false};
}

RotationLabels messageRotationLabels()
{
    return {QStringLiteral("MessageRotation"),
            tr("New Message Rotation"),
            tr("Save Message Rotation As"),
            tr("Open Message Rotation"),
            tr("Delete Message Rotations"),
            tr("Unable to Add New Message Rotation"),
            tr("Message Rotation '%1' already exists!"),
            tr("Messages"),
            QStringLiteral("messageRotationTableView"),
            tr("No messages yet. Press \"Add Message…\" to add one, or \"Open…\" for a saved rotation."),
            true};
}
