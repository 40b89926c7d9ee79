#pragma once

#include "CataloguesFixture.h"
#include "ElidingField.h"
#include "KelMapRotation.h"
#include "MapsView.h"
#include "TestPreferences.h"

/// A connected session on a server that plays tdm on mp_saltworks, with the catalogues loaded.
struct Maps : CataloguesFixture {
    Maps()
    {
        loadCatalogues();
        connectToServer();
        tell(QStringLiteral("g_gametype"), QStringLiteral("tdm"));
        tell(QStringLiteral("mapname"), QStringLiteral("mp_saltworks"));
        tell(QStringLiteral("sv_mapRotation"), QStringLiteral("map mp_ropeway gametype dom map mp_millrace mp_new"));
    }

    void loadCatalogues()
    {
        QCOMPARE(awaited(gametypes.loadGametypeList()), CatalogueState::Ready);
        QCOMPARE(awaited(maps.loadMapList()), CatalogueState::Ready);
    }
    void tell(const QString &name, const QString &value)
    {
        exchange.answer(name, ScriptedExchange::ok(QString("\"%1\" is: \"%2\"^7\n").arg(name, value)));
    }
    void choose(const QString &gametype, const QString &map)
    {
        view.gametypePopUpButton->setCurrentText(gametype);
        const QModelIndexList found = view.mapListController->arranged()->match(
            view.mapListController->arranged()->index(0, 0), Qt::DisplayRole, map, 1, Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        view.mapListController->selection()->select(found.first(), QItemSelectionModel::ClearAndSelect);
    }
    QStringList listedMaps() const
    {
        QStringList names;
        for (const MapInst &map : view.mapListController->content())
            names.append(map.name);
        return names;
    }
    QStringList current() const { return {view.currentGameTypeField->text(), view.currentMapField->text()}; }
    QList<RotationRow> rotation() const { return view.mapServerRotationController->content(); }

    TestPreferences preferences{folder};
    KelMapRotation mapRotations{preferences, alerts, folder.path()};
    MapsView view{server, actions, alerts, preferences, catalogues(), mapRotations};
};
