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
    static KelMapList *sharedKelMapList();

    /// Loads the catalogue anew. What was loaded stays unless the file is Ready.
    QCoro::Task<CatalogueState> loadMapList();
    /// What loading does with a file that is Ready.
    void takeDocument(const XmlDocument &document);

    /// All maps in the order of the file, those with equal names too.
    QList<MapInst> arrangedMaps() const { return m_maps; }
    /// Display name to map; the later of two with one name.
    QHash<QString, MapInst> list() const;
    /// list() without the maps that a ranked server has taken out of play.
    QHash<QString, MapInst> filteredList() const;
    /// The maps of filteredList(), in the order of the file; each name once.
    QList<MapInst> listedMaps() const;
    QString version() const { return m_version; }

    /// The display name of a map that the server knows by this name; the name itself when it is unknown.
    QString findMapByDvar(const QString &dvarName) const;

signals:
    void mapListChanged();

private:
    bool isExcluded(const MapInst &map) const;

    KelServer &m_server;
    CatalogueReader m_reader;
    QList<MapInst> m_maps;
    QString m_version;
    SharedInstance<KelMapList> m_shared{this};
};
