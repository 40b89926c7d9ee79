#include "Fuzzing.h"

#include "PropertyList.h"
#include "SavedServers.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

static void checkServers(const QList<SavedServer> &servers)
{
    require(std::is_sorted(servers.begin(), servers.end(),
                           [](const SavedServer &left, const SavedServer &right) {
                               return left.label.compare(right.label, Qt::CaseInsensitive) < 0;
                           }),
            "servers are sorted by their labels");
}

/// What a property list holds, as a text; its bytes may differ, as libplist shares equal values by chance.
static QByteArray xmlOf(const QByteArray &bytes)
{
    const PropertyList document = parsedPropertyList(bytes);
    char *buffer = nullptr;
    uint32_t length = 0;
    plist_to_xml(document.get(), &buffer, &length);
    const std::unique_ptr<char, decltype(&std::free)> owner(buffer, &std::free);
    return QByteArray(buffer, static_cast<qsizetype>(length));
}

static void fuzz(const QByteArray &bytes)
{
    constexpr qsizetype largestFile = 2 << 20;
    SavedServers saved("/nowhere", "login");
    const PropertyList document = parsedPropertyList(bytes);
    const bool isTaken = saved.takeContent(bytes);
    require(document != nullptr || !isTaken, "what is no property list holds no servers");
    if (!isTaken)
        return;
    checkServers(saved.servers());

    const QByteArray written = propertyListBytes(document.get(), largestFile);
    SavedServers again("/nowhere", "login");
    require(again.takeContent(written) && again.servers() == saved.servers(), "servers are read again");
    require(xmlOf(written) == xmlOf(propertyListBytes(parsedPropertyList(written).get(), largestFile)),
            "what is written over and over stays the same");
}
