#pragma once

#include "CataloguesFixture.h"
#include "Controls.h"
#include "ElidingField.h"
#include "KelMapRotation.h"
#include "MapsView.h"
#include "PlaceholderTable.h"
#include "TestPreferences.h"

#include <QComboBox>
#include <QListView>
#include <QPushButton>

/// A connected session on a server that plays crews on ward_saltworks, with the catalogues loaded.
struct Maps : CataloguesFixture {
    Maps()
    {
        loadCatalogues();
        connectToServer();
        tell(QStringLiteral("g_gametype"), QStringLiteral("crews"));
        tell(QStringLiteral("mapname"), QStringLiteral("ward_saltworks"));
        tell(QStringLiteral("sv_mapRotation"),
             QStringLiteral("map ward_ropeway gametype docks map ward_millrace ward_new"));
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
    QPushButton &button(const char *name) const { return *control<QPushButton>(view, name); }
    void press(const char *name) const { button(name).click(); }
    void choose(const QString &gametype, const QString &map)
    {
        control<QComboBox>(view, "gametypePopUpButton")->setCurrentText(gametype);
        const auto *list = control<QListView>(view, "mapListView");
        const QModelIndexList found =
            list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, map, 1, Qt::MatchExactly);
        QCOMPARE(found.size(), 1);
        list->selectionModel()->select(found.first(), QItemSelectionModel::ClearAndSelect);
    }
    QStringList listedMaps() const { return shownTexts(*control<QListView>(view, "mapListView")); }
    ElidingField &field(const char *name) const { return *control<ElidingField>(view, name); }
    QStringList current() const { return {field("currentGameTypeField").text(), field("currentMapField").text()}; }
    QList<RotationRow> rotation() const
    {
        QList<RotationRow> rows;
        for (const QStringList &texts : shownRows(*control<QTableView>(view, "mapServerRotationTableView")))
            rows.append(RotationRow{texts.at(0), texts.at(1)});
        return rows;
    }

    TestPreferences preferences{folder};
    KelMapRotation mapRotations{preferences, alerts, folder.path()};
    MapsView view{server, actions, alerts, preferences, catalogues, mapRotations};
};
