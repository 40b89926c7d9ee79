#pragma once

#include "ActionQueue.h"
#include "ArrayController.h"
#include "MapInst.h"
#include "RotationText.h"

#include <QCoroTask>

#include <QCheckBox>
#include <QComboBox>
#include <QListView>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QWidget>

class Alerts;
class ElidingField;
class KelGametype;
class KelMapList;
class KelServer;
class PlaceholderTable;
class Preferences;

/// What the server plays and will play, and the commands that change it.
class MapsView : public QWidget
{
    Q_OBJECT
public:
    enum RefreshFlag { GametypeFlag = 1, MapFlag = 2, RotationFlag = 4 };

    /// Everything handed in outlives the view.
    MapsView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences, KelGametype &gametypes,
             KelMapList &maps, QWidget *parent = nullptr);
    ~MapsView() override;

    /// Asks the server for what `flags`, a set of RefreshFlag, name; the rotation asks for the gametype too. Takes no
    /// turn: the action that calls it has one. What is asked for and not told becomes empty, a rotation stays.
    QCoro::Task<> updateMapList(int flags);

    /// The map chosen in the list; without names when none is.
    MapInst selectedMap() const;

    ElidingField *currentGameTypeField;
    ElidingField *currentMapField;
    QPushButton *refreshCurrentMapButton;
    QPushButton *restartMapButton;
    QPushButton *fastRestartMapButton;
    QPushButton *startNextMapButton;
    QCheckBox *autoupdateMaps;
    QSpinBox *autoupdateMapsInterval;
    QComboBox *gametypePopUpButton;
    QListView *mapListView;
    ArrayController<MapInst> *mapListController;
    QPushButton *loadMapButton;
    PlaceholderTable *mapServerRotationTableView;
    ArrayController<RotationRow> *mapServerRotationController;
    QTimer autoupdateMapsTimer;

public slots:
    /// Starts the refresh timer anew as the preferences say, or stops it.
    void autoupdateMapsChanged();
    void stopAutoupdateMapsTimer();
    void updateMapsTimer();
    void refreshCurrentMapButtonPressed();
    void restartMapButtonPressed();
    void fastRestartMapButtonPressed();
    void startNextMapButtonPressed();
    void loadMapButtonPressed();

private:
    /// What "Load Map" is to load, as it was chosen at the press.
    struct Choice {
        QString gametypeTitle;
        QString gametypeDvarName;
        MapInst map;

        bool isComplete() const { return !gametypeDvarName.isEmpty() && !map.dvarName.isEmpty(); }
    };

    void nameControls();
    void layOut();
    void connectControls();
    void gametypeListDidChange();
    void mapListDidChange();
    void choiceDidChange();
    void updatePlaceholder();
    void forgetServer();
    void showRotation(const QString &rotation, const QString &gametype);
    Choice choice() const;
    QCoro::Task<> refresh();
    QCoro::Task<> command(QString line);
    QCoro::Task<> loadMap(Choice chosen);
    QCoro::Task<> tellOfMissingChoice();
    QCoro::Task<> tellOfFailure(QString command, QString error);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    bool m_isRefreshWaiting = false;
};
