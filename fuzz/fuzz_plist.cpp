#include "Fuzzing.h"

#include "PropertyList.h"
#include "SavedServers.h"

#include <algorithm>

static void checkServers(const QList<SavedServer> &servers)
{
    require(std::is_sorted(servers.begin(), servers.end(),
                           [](const SavedServer &left, const SavedServer &right) {
                               return left.label.compare(right.label, Qt::CaseInsensitive) < 0;
                           }),
            "servers are sorted by their labels");
}

static void fuzz(const QByteArray &bytes)
{
    constexpr qsizetype largestFile = 2 << 20;
    SavedServers saved("/nowhere", "login");
    const std::optional<PropertyList> document = parsedPropertyList(bytes);
    const bool isTaken = saved.takeContent(bytes);
    require(document || !isTaken, "what is no property list holds no servers");
    if (!isTaken)
        return;
    checkServers(saved.servers());

    const QByteArray written = propertyListBytes(*document, largestFile);
    SavedServers again("/nowhere", "login");
    require(again.takeContent(written) && again.servers() == saved.servers(), "servers are read again");
    require(parsedPropertyList(written) == document, "nothing is lost when it is written");
}
