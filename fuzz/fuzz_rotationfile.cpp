#include "Fuzzing.h"

#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "RotationDocument.h"

template <typename Kind>
static void checkRotations(const XmlDocument &document)
{
    const typename RotationDocument<Kind>::Dictionary rotations = RotationDocument<Kind>::rotationsIn(document);
    QString error;
    const QByteArray bytes = RotationDocument<Kind>::checkedBytes(rotations, &error);
    require(error.isEmpty(), "what was read can be written");
    const std::optional<XmlDocument> again = XmlDocument::parse(bytes, &error, rotationReading);
    require(again && RotationDocument<Kind>::rotationsIn(*again) == rotations, "rotations are read again");
}

static void fuzz(const QByteArray &bytes)
{
    QString error;
    const std::optional<XmlDocument> document = XmlDocument::parse(bytes, &error, rotationReading);
    require(document.has_value() == error.isEmpty(), "a file that is refused has a reason");
    if (!document)
        return;
    checkRotations<MapRotationKind>(*document);
    checkRotations<MessageRotationKind>(*document);
}
