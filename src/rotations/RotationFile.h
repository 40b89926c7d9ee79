#pragma once

#include "GuardedFile.h"
#include "XmlDocument.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The file of the rotations of one kind. Main thread only.
class RotationFile : public GuardedFile
{
public:
    /// @param rootElement  begins every file of this kind.
    RotationFile(const QString &path, QByteArray rootElement);

    /// @param error  why it cannot be read, in the user's language; must not be null.
    std::optional<XmlDocument> readDocument(QString *error);
    /// Removes what a save has left behind that was killed more than a minute ago.
    void removeStaleTemporaries() const;

private:
    bool isOwnTemporary(const QString &path) const;

    QByteArray m_rootElement;
};
