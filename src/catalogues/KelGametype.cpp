#include "KelGametype.h"

#include "DvarSettingList.h"

#include <utility>

KelGametype::KelGametype(const KelServer &server, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_server(server), m_reader(std::move(reader)), m_formerNames(m_reader.folders().resources)
{
}

QCoro::Task<CatalogueState> KelGametype::loadGametypeList()
{
    return m_reader.load(CatalogueReader::Kind::Gametypes,
                         [this](const XmlDocument &document) { takeDocument(document); });
}

void KelGametype::takeDocument(const XmlDocument &document)
{
    m_gametypes.clear();
    m_gametypeList.clear();
    m_listedGametypes.clear();
    m_displayNames.clear();
    for (const pugi::xml_node &element : document.elements("//Gametype")) {
        m_gametypes.append(DvarSettingList::dvarSettingsWithXMLNode(element, m_server));
        m_gametypeList.insert(m_gametypes.constLast()->name(), m_gametypes.constLast());
    }
    for (const std::shared_ptr<DvarSettingList> &gametype : std::as_const(m_gametypes)) {
        if (m_gametypeList.value(gametype->name()) != gametype)
            continue;
        m_listedGametypes.append(gametype);
        if (!gametype->dvarName().isNull() && !m_displayNames.contains(gametype->dvarName()))
            m_displayNames.insert(gametype->dvarName(), gametype->name());
    }
    emit gametypeListChanged();
    setSelectedSettingList(m_gametypes.value(0));
}

std::shared_ptr<DvarSettingList> KelGametype::findGametypeByName(const QString &name) const
{
    return m_gametypeList.value(name, m_gametypeList.value(m_formerNames.present(name)));
}

void KelGametype::setSelectedSettingList(const std::shared_ptr<DvarSettingList> &list)
{
    m_selectedSettingList = list;
    emit selectedSettingsChanged();
    emit selectedSettingListChanged();
}

QList<std::shared_ptr<DvarSettingCategory>> KelGametype::selectedSettings() const
{
    const std::shared_ptr<DvarSettingList> selected = selectedSettingList();
    return selected ? selected->children() : QList<std::shared_ptr<DvarSettingCategory>>();
}
