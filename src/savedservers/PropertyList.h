#pragma once

#include <QByteArray>

#include <memory>

struct PropertyListDeleter {
    void operator()(void *node) const;
};
/// The root of a property list, a libplist node. Any thread.
using PropertyList = std::unique_ptr<void, PropertyListDeleter>;

/// Reads either flavour. @return null for anything but a sound dictionary that is harmless to read: bounded in depth
/// and size, without entities or circles.
PropertyList parsedPropertyList(const QByteArray &data);

/// @return `dictionary` in a form of at most `largestSize` bytes that is known to be read again; empty if there is
/// none. That is XML, and binary for what XML cannot hold, such as control characters in the text of another program.
QByteArray propertyListBytes(void *dictionary, qsizetype largestSize);
