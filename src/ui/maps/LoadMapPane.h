#pragma once

#include "ArrayController.h"
#include "Catalogues.h"
#include "MapInst.h"

#include <QCoroTask>

#include <QWidget>

class ActionQueue;
class Alerts;
class KelServer;
class QAction;
class QComboBox;
class QListView;

/// The gametypes and maps of the catalogues, one of each to choose, and the button that makes the server play them.
class LoadMapPane : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the pane.
    LoadMapPane(KelServer &server, ActionQueue &actions, Alerts &alerts, const Catalogues &catalogues,
                QWidget *parent = nullptr);

    /// Where the page hands the focus that it gets. It is no focus proxy of the pane: the Tab key, on its way from
    /// before the pane, would jump to it and leave out what stands above.
    QWidget *focusTarget() const;

    /// For the menu.
    QAction *loadAction() const { return m_loadAction; }

public slots:
    void loadMapButtonPressed();

signals:
    /// The server has taken the gametype, or plays the map, of this name, as users know it.
    void gametypeSet(const QString &name);
    void mapLoaded(const QString &name);

private:
    /// What "Load Map" is to load, as it was chosen at the press.
    struct Choice {
        QString gametypeTitle;
        QString gametypeDvarName;
        MapInst map;

        bool isComplete() const { return !gametypeDvarName.isEmpty() && !map.dvarName.isEmpty(); }
    };

    void layOut();
    void gametypeListDidChange();
    void mapListDidChange();
    void choiceDidChange();
    /// The map chosen in the list; without names when none is.
    MapInst selectedMap() const;
    Choice choice() const;
    QCoro::Task<> loadMap(Choice chosen);
    QCoro::Task<> tellOfMissingChoice();

    QComboBox *gametypePopUpButton;
    QListView *mapListView;
    ArrayController<MapInst> *mapListController;
    QAction *m_loadAction;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
};
