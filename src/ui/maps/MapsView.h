#pragma once

#include "ActionQueue.h"
#include "ArrayController.h"
#include "GameCatalogues.h"
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
class KelMapRotation;
class KelServer;
class MapGametypePairWindowController;
class PlaceholderTable;
class Preferences;
class RotationPane;

/// What the server plays and will play, the commands that change it, and the rotations that are built for it.
class MapsView : public QWidget
{
    Q_OBJECT
public:
    enum RefreshFlag { GametypeFlag = 1, MapFlag = 2, RotationFlag = 4 };

    /// Everything handed in outlives the view.
    MapsView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
             const GameCatalogues &catalogues, KelMapRotation &rotations, QWidget *parent = nullptr);
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
    QPushButton *copyToBuilderButton;
    RotationPane *rotationPane;
    QPushButton *addMapButton;
    QPushButton *setBuiltRotationButton;
    /// Made when it is opened for the first time.
    MapGametypePairWindowController *mapGametypePairWindowController = nullptr;
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
    void addMapToRotationMenuItemClicked();
    /// Makes the builder's rows the server's rotation and starts the first of them. Nothing is sent when a name is
    /// unknown to the catalogues.
    void setBuiltRotationButtonPressed();
    void copyCurrentMapRotationToBuilderButtonPressed();

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
    QLayout *serverRotationLayout();
    void nameRotationControls();
    void updatePlaceholder();
    void updateCopyButton();
    void forgetServer();
    void showRotation(const QString &rotation, const QString &gametype);
    Choice choice() const;
    QCoro::Task<> refresh();
    QCoro::Task<> command(QString line);
    QCoro::Task<> loadMap(Choice chosen);
    QCoro::Task<> tellOfMissingChoice();
    QCoro::Task<> tellOfFailure(QString command, QString error);
    QCoro::Task<> setBuiltRotation(QString rotation);
    QCoro::Task<> tellOfUnknownNames(BuiltRotation built);
    QCoro::Task<> copyToBuilder(QList<RotationRow> rows);
    QList<qsizetype> takeRows(const QList<QStringList> &rows);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    KelMapRotation &m_rotations;
    bool m_isRefreshWaiting = false;
};
