#include "DvarSettingList.h"

#include "DvarSetting.h"
#include "DvarSettingCategory.h"
#include "SortedKeys.h"
#include "XmlDocument.h"

#include <algorithm>

std::shared_ptr<DvarSettingList> DvarSettingList::dvarSettingsWithXMLNode(const pugi::xml_node &node,
                                                                          const KelServer &server)
{
    auto list = std::make_shared<DvarSettingList>();
    list->m_name = xmlChildText(node, "name");
    list->m_dvarName = xmlChildText(node, "dvarName");
    QList<std::shared_ptr<DvarSetting>> settings;
    for (const pugi::xml_node &element : xmlElements(node, ".//DvarSetting"))
        settings.append(DvarSetting::dvarSettingWithXMLNode(element, server));
    list->setSettings(settings);
    return list;
}

QList<std::shared_ptr<DvarSetting>> DvarSettingList::settings() const
{
    return valuesSortedByKey(m_settingsList);
}

void DvarSettingList::setSettings(const QList<std::shared_ptr<DvarSetting>> &settings)
{
    SettingsByName settingsList;
    QHash<QString, QList<std::shared_ptr<DvarSetting>>> byCategory;
    for (const std::shared_ptr<DvarSetting> &setting : settings) {
        if (settingsList.contains(setting->name()))
            continue;
        settingsList.insert(setting->name(), setting);
        byCategory[setting->category().isNull() ? m_name : setting->category()].append(setting);
    }
    CategoriesByName categories;
    for (auto each = byCategory.begin(); each != byCategory.end(); ++each) {
        std::stable_sort(each->begin(), each->end(), [](const auto &left, const auto &right) {
            return left->name().compare(right->name(), Qt::CaseSensitive) < 0;
        });
        categories.insert(each.key(), std::make_shared<DvarSettingCategory>(each.key(), *each));
    }
    m_settingsList = std::move(settingsList);
    m_categorizedSettingsList = std::move(categories);
}

QList<std::shared_ptr<DvarSettingCategory>> DvarSettingList::children() const
{
    return valuesSortedByKey(m_categorizedSettingsList);
}
