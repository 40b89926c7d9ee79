#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <memory>

namespace pugi
{
class xml_node;
}

class DvarSetting;
class DvarSettingCategory;
class KelServer;

/// A named list of settings, as they stand and by category: a gametype's, or a group of the game's.
/// A copy shares its settings and categories with the original. Main thread only.
class DvarSettingList
{
public:
    using SettingsByName = QHash<QString, std::shared_ptr<DvarSetting>>;
    using CategoriesByName = QHash<QString, std::shared_ptr<DvarSettingCategory>>;

    /// Reads the list with all settings found under `node`.
    static std::shared_ptr<DvarSettingList> dvarSettingsWithXMLNode(const pugi::xml_node &node,
                                                                    const KelServer &server);

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    /// Of a gametype: its short name, the value of g_gametype.
    QString dvarName() const { return m_dvarName; }

    SettingsByName settingsList() const { return m_settingsList; }

    /// In the order of their names, without regard to case.
    QList<std::shared_ptr<DvarSetting>> settings() const;
    /// Replaces all settings. The first of several with one name is kept; those without a category go under one that
    /// is named like the list.
    void setSettings(const QList<std::shared_ptr<DvarSetting>> &settings);

    /// The categories in the order of their names, without regard to case.
    QList<std::shared_ptr<DvarSettingCategory>> children() const;
    bool isLeaf() const { return false; }

private:
    QString m_name;
    QString m_dvarName;
    SettingsByName m_settingsList;
    CategoriesByName m_categorizedSettingsList;
};

using GametypeList = DvarSettingList;
using SettingInstList = DvarSettingList;
