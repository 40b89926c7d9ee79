#pragma once

#include "GuardedFile.h"
#include "XmlDocument.h"

#include <QString>

#include <optional>

/// The file of the rotations of one kind. Main thread only.
class RotationFile : public GuardedFile
{
public:
    explicit RotationFile(const QString &path);

    /// @param error  why it cannot be read, in the user's language; must not be null.
    std::optional<XmlDocument> readDocument(QString *error);
};
