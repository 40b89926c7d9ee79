#include "RotationFile.h"

#include "RotationXml.h"

RotationFile::RotationFile(const QString &path) : GuardedFile(path, rotationReading.maximumSize) {}

std::optional<XmlDocument> RotationFile::readDocument(QString *error)
{
    const std::optional<QByteArray> bytes = read(error);
    if (!bytes)
        return std::nullopt;
    std::optional<XmlDocument> document = XmlDocument::parse(*bytes, error, rotationReading);
    if (!document)
        markDamaged();
    return document;
}
