#pragma once

#include <QString>

/// What dialogs and panes call one kind of rotation.
struct RotationLabels {
    QString kind; ///< "MapRotation" or "MessageRotation", in the object names of the dialogs
    QString newTitle;
    QString saveAsTitle;
    QString openTitle;
    QString deleteTitle;
    QString refusalTitle;
    QString refusalText; ///< with the refused name as %1
    QString tableName;   ///< what the table of the open rotation is called aloud
    QString tableObjectName;
    QString placeholder; ///< in the table while it is empty
    bool savesAgain;     ///< once more after its Save As panel has saved
};

RotationLabels mapRotationLabels();
RotationLabels messageRotationLabels();
