#pragma once

#include "CatalogueReader.h"
#include "FormerNames.h"
#include "SharedInstance.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>

#include <memory>

class DvarSettingCategory;
class DvarSettingList;
class KelServer;

/// The catalogue of gametypes with their settings. Empty until it is loaded for the first time. Main thread only.
class KelGametype : public QObject
{
    Q_OBJECT
public:
    /// The session outlives the catalogue. The latest catalogue made is the shared one.
    KelGametype(const KelServer &server, CatalogueReader reader, QObject *parent = nullptr);

    /// @return the latest catalogue made, or null.
    static KelGametype *sharedKelGametype() { return SharedInstance<KelGametype>::latest(); }

    /// Loads the catalogue anew and selects its first gametype. What was loaded stays unless the file is Ready.
    QCoro::Task<CatalogueState> loadGametypeList();
    /// What loading does with a file that is Ready.
    void takeDocument(const XmlDocument &document);

    /// Display name to gametype; the later of two with one name.
    QHash<QString, std::shared_ptr<DvarSettingList>> gametypeList() const { return m_gametypeList; }
    /// All gametypes in the order of the file, those with equal names too.
    QList<std::shared_ptr<DvarSettingList>> arrangedGametypes() const { return m_gametypes; }
    /// The gametypes of gametypeList(), in the order of the file.
    QList<std::shared_ptr<DvarSettingList>> listedGametypes() const { return m_listedGametypes; }
    const FormerNames &formerNames() const { return m_formerNames; }

    /// The display name of a gametype with this short name; the short name itself when it is unknown.
    QString findGametypeByDvar(const QString &dvarName) const { return m_displayNames.value(dvarName, dvarName); }
    /// The gametype with this display name, or with the present one where this is a former name; null if there is none.
    std::shared_ptr<DvarSettingList> findGametypeByName(const QString &name) const;

    /// The gametype whose settings are shown; null when there is none.
    std::shared_ptr<DvarSettingList> selectedSettingList() const { return m_selectedSettingList.lock(); }
    void setSelectedSettingList(const std::shared_ptr<DvarSettingList> &list);
    /// The categories of the selected gametype.
    QList<std::shared_ptr<DvarSettingCategory>> selectedSettings() const;

signals:
    void gametypeListChanged();
    void selectedSettingsChanged();
    /// Follows selectedSettingsChanged() when all rows are to be expanded.
    void selectedSettingListChanged();

private:
    const KelServer &m_server;
    CatalogueReader m_reader;
    FormerNames m_formerNames;
    QList<std::shared_ptr<DvarSettingList>> m_gametypes;
    QHash<QString, std::shared_ptr<DvarSettingList>> m_gametypeList;
    QList<std::shared_ptr<DvarSettingList>> m_listedGametypes;
    QHash<QString, QString> m_displayNames; ///< by short name, of the listed gametypes
    std::weak_ptr<DvarSettingList> m_selectedSettingList;
    SharedInstance<KelGametype> m_shared{this};
};
