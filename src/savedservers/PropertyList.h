#pragma once

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/// A value of a property list that holds no others, as XML writes it.
struct PropertyText {
    QString kind; ///< "string", "data" (in base64), "integer", "real", "date", "true" or "false"
    QString text;

    bool operator==(const PropertyText &) const = default;
};

/// The root dictionary of a property list: what stands in it is a QVariantMap, a QVariantList or a PropertyText.
using PropertyList = QVariantMap;

/// Reads either flavour. @return nothing for anything but a sound dictionary that is harmless to read: bounded in depth
/// and size, without entities or circles. Any thread.
std::optional<PropertyList> parsedPropertyList(const QByteArray &data);

/// @return the list as XML, of at most `largestSize` bytes and known to be read again; empty if that cannot be. A
/// control character, which only another program can have put there, becomes a numeric reference. Any thread.
QByteArray propertyListBytes(const PropertyList &list, qsizetype largestSize);
