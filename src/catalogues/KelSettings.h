#pragma once

#include "CatalogueReader.h"
#include "SharedInstance.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <memory>

class DvarSettingCategory;
class DvarSettingList;
class KelServer;

/// The catalogue of game settings in groups, for ranked or for unranked servers. Empty until it is loaded for the first
/// time. Main thread only.
class KelSettings : public QObject
{
    Q_OBJECT
public:
    /// The session outlives the catalogue. The latest catalogue made is the shared one.
    KelSettings(const KelServer &server, CatalogueReader reader, QObject *parent = nullptr);

    /// @return the latest catalogue made, or null.
    static KelSettings *sharedKelSettings() { return SharedInstance<KelSettings>::latest(); }

    /// Loads the catalogue of the session's mode anew and selects its first group. What was loaded stays unless the
    /// file is Ready.
    QCoro::Task<CatalogueState> loadSettings();
    /// What loading does with a file that is Ready.
    void takeDocument(const XmlDocument &document);

    /// Group name to group; the later of two with one name.
    QHash<QString, std::shared_ptr<DvarSettingList>> settingsList() const { return m_settingsList; }
    /// The names of the groups in the order of the file.
    QStringList arrangedGroups() const { return m_groupNames; }
    /// The groups in the order of their names, without regard to case.
    QList<std::shared_ptr<DvarSettingList>> sortedSettingsValues() const;

    /// The name of the group that is shown; null when there is none.
    QString selectedSettingList() const { return m_selectedSettingList; }
    /// All rows are to be expanded when the selection has changed.
    void setSelectedSettingList(const QString &groupName);
    /// The categories of the selected group.
    QList<std::shared_ptr<DvarSettingCategory>> selectedSettings() const;

signals:
    void sortedSettingsValuesChanged();
    void selectedSettingsChanged();

private:
    const KelServer &m_server;
    CatalogueReader m_reader;
    QHash<QString, std::shared_ptr<DvarSettingList>> m_settingsList;
    QStringList m_groupNames;
    QString m_selectedSettingList;
    SharedInstance<KelSettings> m_shared{this};
};
