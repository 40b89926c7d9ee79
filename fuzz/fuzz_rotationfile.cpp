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

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QString error;
    const std::optional<XmlDocument> document = XmlDocument::parse(fuzzedBytes(data, size), &error, rotationReading);
    require(document.has_value() == error.isEmpty(), "a file that is refused has a reason");
    if (!document)
        return 0;
    checkRotations<MapRotationKind>(*document);
    checkRotations<MessageRotationKind>(*document);
    return 0;
}
