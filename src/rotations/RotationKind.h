#pragma once

#include <QString>

/// What the rotations of maps and of messages differ in: where they are kept, and what the user reads of them.
/// %1 stands for the name of a rotation.
struct RotationKind {
    QString name; ///< "MapRotation" or "MessageRotation", in the object names of the sheets
    QString fileName;
    QString currentRotationKey; ///< the preference that holds the name of the open rotation

    QString creationRefused;
    QString alreadyExists;
    QString deletionRefused;
    QString doesNotExist;
    QString saveQuestion;
    QString loadFailed;
    QString saveFailed;

    QString newTitle; ///< of a sheet, like the next
    QString saveAsTitle;
    QString openTitle;
    QString deleteTitle;
    QString nameRefused; ///< title and text of what a naming sheet says of a name that is taken
    QString nameTaken;

    QString tableName; ///< what the table of the open rotation is called aloud
    QString tableObjectName;
    QString placeholder; ///< in the table while it is empty
};
