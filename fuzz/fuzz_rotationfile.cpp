#include "Fuzzing.h"

#include "MapRotation.h"
#include "MessageRotation.h"
#include "RotationDocument.h"

template <typename Entry>
static void checkRotations(const XmlDocument &document)
{
    const RotationDictionary<Entry> rotations = rotationsIn<Entry>(document);
    QString error;
    const QByteArray bytes = checkedRotationBytes(rotations, &error);
    require(error.isEmpty(), "what was read can be written");
    const std::optional<XmlDocument> again = XmlDocument::parse(bytes, &error, rotationReading);
    require(again && rotationsIn<Entry>(*again) == rotations, "rotations are read again");
}

static void fuzz(const QByteArray &bytes)
{
    QString error;
    const std::optional<XmlDocument> document = XmlDocument::parse(bytes, &error, rotationReading);
    require(document.has_value() == error.isEmpty(), "a file that is refused has a reason");
    if (!document)
        return;
    checkRotations<MapRotationInst>(*document);
    checkRotations<MessageRotationInst>(*document);
}
