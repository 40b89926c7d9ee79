#include "KelMapList.h"

#include "KelServer.h"

#include <utility>

KelMapList::KelMapList(KelServer &server, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_server(server), m_reader(std::move(reader))
{
}

QCoro::Task<CatalogueState> KelMapList::loadMapList()
{
    return m_reader.load(CatalogueReader::Kind::Maps, [this](const XmlDocument &document) { takeDocument(document); });
}

void KelMapList::takeDocument(const XmlDocument &document)
{
    m_maps.clear();
    m_list.clear();
    m_displayNames.clear();
    for (const pugi::xml_node &element : document.elements("//Map")) {
        m_maps.append(MapInst{xmlChildText(element, "name"), xmlChildText(element, "dvarName"),
                              xmlChildText(element, "excludeDvar")});
        m_list.insert(m_maps.constLast().name, m_maps.constLast());
    }
    for (const MapInst &map : std::as_const(m_maps)) {
        if (!map.dvarName.isNull() && !m_displayNames.contains(map.dvarName) && m_list.value(map.name) == map)
            m_displayNames.insert(map.dvarName, map.name);
    }
    emit mapListChanged();
}

bool KelMapList::isExcluded(const MapInst &map) const
{
    if (!m_server.isRanked() || map.excludeDvar.isNull())
        return false;
    const QHash<QString, QString> dvars = m_server.dvarList();
    const auto found = dvars.constFind(map.excludeDvar);
    return found != dvars.constEnd() && *found != QLatin1String("0");
}

QHash<QString, MapInst> KelMapList::filteredList() const
{
    QHash<QString, MapInst> filtered = m_list;
    filtered.removeIf([this](const QHash<QString, MapInst>::iterator &each) { return isExcluded(each.value()); });
    return filtered;
}

QList<MapInst> KelMapList::listedMaps() const
{
    QHash<QString, MapInst> left = filteredList();
    QList<MapInst> listed;
    for (const MapInst &map : m_maps) {
        const auto found = left.constFind(map.name);
        if (found == left.constEnd() || *found != map)
            continue;
        listed.append(map);
        left.erase(found);
    }
    return listed;
}
