#pragma once

#include "CatalogueReader.h"
#include "MapInst.h"
#include "SharedInstance.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>

class KelServer;

/// The catalogue of maps. Empty until it is loaded for the first time. Main thread only.
class KelMapList : public QObject
{
    Q_OBJECT
public:
    /// `server` outlives the catalogue. The latest catalogue made is the shared one.
    KelMapList(KelServer &server, CatalogueReader reader, QObject *parent = nullptr);

    /// @return the latest catalogue made, or null.
    static KelMapList *sharedKelMapList() { return SharedInstance<KelMapList>::latest(); }

    /// Loads the catalogue anew. What was loaded stays unless the file is Ready.
    QCoro::Task<CatalogueState> loadMapList();
    /// What loading does with a file that is Ready.
    void takeDocument(const XmlDocument &document);

    /// All maps in the order of the file, those with equal names too.
    QList<MapInst> arrangedMaps() const { return m_maps; }
    /// Display name to map; the later of two with one name.
    QHash<QString, MapInst> list() const { return m_list; }
    /// list() without the maps that a ranked server has taken out of play.
    QHash<QString, MapInst> filteredList() const;
    /// The maps of filteredList(), in the order of the file; each name once.
    QList<MapInst> listedMaps() const;

    /// The display name of a map that the server knows by this name; the name itself when it is unknown.
    QString findMapByDvar(const QString &dvarName) const { return m_displayNames.value(dvarName, dvarName); }

signals:
    void mapListChanged();

private:
    bool isExcluded(const MapInst &map) const;

    KelServer &m_server;
    CatalogueReader m_reader;
    QList<MapInst> m_maps;
    QHash<QString, MapInst> m_list;
    QHash<QString, QString> m_displayNames; ///< by the server's name, of the maps in list()
    SharedInstance<KelMapList> m_shared{this};
};
