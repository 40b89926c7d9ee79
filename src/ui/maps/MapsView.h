#pragma once

#include "Catalogues.h"
#include "RotationText.h"
#include "TabPage.h"

class ActionQueue;
class Alerts;
class CurrentMapPane;
class KelMapRotation;
class KelServer;
class LoadMapPane;
class MapGametypePairWindowController;
class Preferences;
class QAction;
class RotationPane;
class ServerRotationPane;

/// What the server plays and will play, what it can be made to play, and the rotations that are built for it.
class MapsView : public TabPage
{
    Q_OBJECT
public:
    enum RefreshFlag {
        GametypeFlag = 1,
        MapFlag = 2,
        RotationFlag = 4,
        AllFlags = GametypeFlag | MapFlag | RotationFlag
    };

    /// Everything handed in outlives the view.
    MapsView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
             const Catalogues &catalogues, KelMapRotation &rotations, QWidget *parent = nullptr);

    /// Asks the server for what `flags`, a set of RefreshFlag, name; the rotation asks for the gametype too. Takes no
    /// turn: the action that calls it has one. What is asked for and not told becomes empty, a rotation stays.
    QCoro::Task<> updateMapList(int flags);

    void fillMenu(QMenu &menu) override;
    PageDocument *document() override;
    void setInFront(bool isInFront) override;
    QCoro::Task<> didConnect() override;
    void willDisconnect() override;

public slots:
    void addMapToRotationMenuItemClicked();
    /// Makes the builder's rows the server's rotation and starts the first of them; asks first when there are none.
    /// Nothing is sent when a name is unknown to the catalogues.
    void setBuiltRotationButtonPressed();
    void copyCurrentMapRotationToBuilderButtonPressed();

private:
    /// What a fresh connection shows, with a turn for each query, so that any action gets in between.
    QCoro::Task<> fetchInTurns(quint64 connection);
    void layOut();
    /// @return whether the server is to be left without a rotation.
    QCoro::Task<bool> confirmEmptyRotation();
    QCoro::Task<> setBuiltRotation(QString rotation);
    QCoro::Task<> tellOfUnknownNames(BuiltRotation built);
    QCoro::Task<> copyToBuilder(QList<RotationRow> rows);

    CurrentMapPane *currentMapPane;
    LoadMapPane *loadMapPane;
    ServerRotationPane *serverRotationPane;
    RotationPane *rotationPane;
    QAction *m_addMapAction;
    QAction *m_setRotationAction;
    /// Made when it is opened for the first time.
    MapGametypePairWindowController *mapGametypePairWindowController = nullptr;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    KelMapRotation &m_rotations;
};
