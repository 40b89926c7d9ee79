#include "KelMapList.h"

#include "KelServer.h"

#include <utility>

KelMapList::KelMapList(KelServer &server, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_server(server), m_reader(std::move(reader))
{
}

KelMapList *KelMapList::sharedKelMapList()
{
    return SharedInstance<KelMapList>::latest();
}

QCoro::Task<CatalogueState> KelMapList::loadMapList()
{
    const WorkingCopy::Kind kind = WorkingCopy::maps();
    const WorkingCopy::Result opened = co_await m_reader.open(kind);
    if (opened.document)
        takeDocument(*opened.document);
    co_return opened.state;
}

void KelMapList::takeDocument(const XmlDocument &document)
{
    const QString version = document.lastText("//version");
    if (!version.isNull())
        m_version = version;
    m_maps.clear();
    for (const pugi::xml_node &element : document.elements("//Map")) {
        m_maps.append(MapInst{xmlChildText(element, "name"), xmlChildText(element, "dvarName"),
                              xmlChildText(element, "excludeDvar")});
    }
    emit mapListChanged();
}

QHash<QString, MapInst> KelMapList::list() const
{
    QHash<QString, MapInst> list;
    for (const MapInst &map : m_maps)
        list.insert(map.name, map);
    return list;
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
    QHash<QString, MapInst> filtered = list();
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

QString KelMapList::findMapByDvar(const QString &dvarName) const
{
    const QHash<QString, MapInst> listed = list();
    for (const MapInst &map : m_maps) {
        if (!map.dvarName.isNull() && map.dvarName == dvarName && listed.value(map.name) == map)
            return map.name;
    }
    return dvarName;
}
