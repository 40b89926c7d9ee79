#pragma once

#include "Catalogues.h"

#include <QCoroTask>

#include <QList>
#include <QWidget>

#include <optional>

class ActionQueue;
class ElidingField;
class KelServer;
class Preferences;
class QAction;
class RefreshTimer;

/// What the server plays, the commands that start it anew or end it, and the timer that asks for it again and again.
class CurrentMapPane : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the pane.
    CurrentMapPane(KelServer &server, ActionQueue &actions, Preferences &preferences, const Catalogues &catalogues,
                   QWidget *parent = nullptr);

    /// Asks the server for the gametype and shows it; empty when the server does not tell. Takes no turn: the action
    /// that calls it has one.
    /// @return what is shown. Nothing when the connection has ended or the question was called off: then all stays. Nor
    /// when the server is silent or refuses the password: then the map is empty too, and nothing more is to be asked.
    QCoro::Task<std::optional<QString>> updateGametype();
    /// The same for the map.
    QCoro::Task<std::optional<QString>> updateMap();

    /// For the menu, in this order.
    QList<QAction *> menuActions() const;
    /// Asks again and again from now on, as the user wants it.
    RefreshTimer &refreshTimer() { return *m_refreshTimer; }
    /// Whether the key of "Refresh" is the pane's in the whole window.
    void setInFront(bool isInFront);

public slots:
    void showGametype(const QString &name);
    void showMap(const QString &name);
    void updateMapsTimer();
    void refreshCurrentMapButtonPressed();
    void restartMapButtonPressed();
    void fastRestartMapButtonPressed();
    void startNextMapButtonPressed();

private:
    void layOut(Preferences &preferences);
    void forgetServer();
    void connectionDidChange(bool isConnected);
    QCoro::Task<> refresh(bool wasAnswering);
    /// @param name  what the line does, in the words of its button.
    QCoro::Task<> command(QString line, QString name);

    ElidingField *currentGameTypeField;
    ElidingField *currentMapField;
    RefreshTimer *m_refreshTimer = nullptr;
    QAction *m_refreshAction;
    QAction *m_restartAction;
    QAction *m_fastRestartAction;
    QAction *m_nextMapAction;

    KelServer &m_server;
    ActionQueue &m_actions;
    KelGametype &m_gametypes;
    KelMapList &m_maps;
    bool m_isRefreshWaiting = false;
};
