#include "KelSettings.h"

#include "DvarSettingList.h"
#include "KelServer.h"
#include "SortedKeys.h"

#include <utility>

KelSettings::KelSettings(const KelServer &server, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_server(server), m_reader(std::move(reader))
{
}

QCoro::Task<CatalogueState> KelSettings::loadSettings()
{
    using Kind = CatalogueReader::Kind;
    return m_reader.load(m_server.isRanked() ? Kind::RankedSettings : Kind::UnrankedSettings,
                         [this](const XmlDocument &document) { takeDocument(document); });
}

void KelSettings::takeDocument(const XmlDocument &document)
{
    m_settingsList.clear();
    m_groupNames.clear();
    for (const pugi::xml_node &element : document.elements("//SettingInst")) {
        const auto list = DvarSettingList::dvarSettingsWithXMLNode(element, m_server);
        // Voice chat is never offered: these servers leave it to the players.
        if (list->name().compare(QLatin1String("voip"), Qt::CaseInsensitive) == 0)
            continue;
        if (!m_settingsList.contains(list->name()))
            m_groupNames.append(list->name());
        m_settingsList.insert(list->name(), list);
    }
    emit sortedSettingsValuesChanged();
    setSelectedSettingList(m_groupNames.value(0));
}

QList<std::shared_ptr<DvarSettingList>> KelSettings::sortedSettingsValues() const
{
    return valuesSortedByKey(m_settingsList);
}

void KelSettings::setSelectedSettingList(const QString &groupName)
{
    m_selectedSettingList = groupName;
    emit selectedSettingsChanged();
}

QList<std::shared_ptr<DvarSettingCategory>> KelSettings::selectedSettings() const
{
    const std::shared_ptr<DvarSettingList> selected = m_settingsList.value(m_selectedSettingList);
    return selected ? selected->children() : QList<std::shared_ptr<DvarSettingCategory>>();
}
