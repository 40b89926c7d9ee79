#include "KelSettings.h"

#include "DvarSettingList.h"
#include "KelServer.h"
#include "SortedKeys.h"

#include <utility>

KelSettings::KelSettings(const CatalogueContext &context, CatalogueReader reader, QObject *parent)
    : QObject(parent), m_context(context), m_reader(std::move(reader))
{
}

KelSettings *KelSettings::sharedKelSettings()
{
    return SharedInstance<KelSettings>::latest();
}

QCoro::Task<CatalogueState> KelSettings::loadSettings()
{
    const WorkingCopy::Kind kind = WorkingCopy::settings(m_context.server.isRanked());
    const WorkingCopy::Result opened = co_await m_reader.open(kind);
    if (opened.document)
        takeDocument(*opened.document);
    co_return opened.state;
}

void KelSettings::takeDocument(const XmlDocument &document)
{
    const QString version = document.lastText("//version");
    if (!version.isNull())
        m_version = version;
    m_settingsList.clear();
    m_groupNames.clear();
    for (const pugi::xml_node &element : document.elements("//SettingInst")) {
        const auto list = DvarSettingList::dvarSettingsWithXMLNode(element, m_context);
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
