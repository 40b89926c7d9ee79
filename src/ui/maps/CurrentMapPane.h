#pragma once

#include "Catalogues.h"

#include <QCoroTask>

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <optional>

class ActionQueue;
class Alerts;
class ElidingField;
class KelServer;
class Preferences;
class QAction;
class QCheckBox;
class QMenu;
class QPushButton;
class QSpinBox;

/// What the server plays, the commands that start it anew or end it, and the timer that asks for it again and again.
class CurrentMapPane : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the pane.
    CurrentMapPane(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                   const Catalogues &catalogues, QWidget *parent = nullptr);

    /// Asks the server for the gametype and shows it; empty when the server does not tell. Takes no turn: the action
    /// that calls it has one.
    /// @return what is shown. Nothing when the connection has ended or the question was called off: then all stays.
    QCoro::Task<std::optional<QString>> updateGametype();
    /// The same for the map.
    QCoro::Task<std::optional<QString>> updateMap();

    void fillMenu(QMenu &menu);
    /// Whether the key of "Refresh" is the pane's in the whole window.
    void setInFront(bool isInFront);

public slots:
    void showGametype(const QString &name);
    void showMap(const QString &name);
    /// Starts the refresh timer anew as the preferences say, or stops it.
    void autoupdateMapsChanged();
    void stopAutoupdateMapsTimer();
    void updateMapsTimer();
    void refreshCurrentMapButtonPressed();
    void restartMapButtonPressed();
    void fastRestartMapButtonPressed();
    void startNextMapButtonPressed();

private:
    void nameControls();
    void layOut();
    void connectControls();
    void forgetServer();
    void connectionDidChange(bool isConnected);
    QCoro::Task<> refresh();
    QCoro::Task<> command(QString line);

    ElidingField *currentGameTypeField;
    ElidingField *currentMapField;
    QPushButton *refreshCurrentMapButton;
    QPushButton *restartMapButton;
    QPushButton *fastRestartMapButton;
    QPushButton *startNextMapButton;
    QCheckBox *autoupdateMaps;
    QSpinBox *autoupdateMapsInterval;
    QTimer *autoupdateMapsTimer;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    QPointer<QAction> m_refreshAction; ///< in the menu
    bool m_isRefreshWaiting = false;
};
