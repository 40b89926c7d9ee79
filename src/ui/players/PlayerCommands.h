#pragma once

#include "PlayerList.h"

#include <QCoroTask>

#include <QObject>

#include <chrono>

class ActionQueue;
class Alerts;
class KelServer;

/// What an administrator does to players. Each operation is an action that waits for its turn and tells of all its
/// failures in one alert.
class PlayerCommands : public QObject
{
    Q_OBJECT
public:
    /// Everything handed in outlives the commands.
    PlayerCommands(KelServer &server, ActionQueue &actions, Alerts &alerts, QObject *parent = nullptr);

    void kick(const QList<PlayerRow> &players);
    void ban(const QList<PlayerRow> &players);
    void tempBan(const QList<PlayerRow> &players);
    /// @param present  who is on the server now: numbers go to others when players leave, so a recipient is looked up
    ///                 in it, and one who has left counts as a failure.
    void tell(const QList<PlayerRow> &recipients, const QList<PlayerRow> &present, const QString &message);
    /// Asks first.
    void kickAll();

signals:
    /// The list shows what a command did when it is fetched after `delay`.
    void refreshWanted(std::chrono::seconds delay);

private:
    /// @param failures  what is to be told already, as lines of the summary alert.
    QCoro::Task<> command(QString word, QList<PlayerRow> chosen, QString argument, std::chrono::seconds refreshAfter,
                          QString failures = {});
    QCoro::Task<> sendCommandToSelectedPlayers(QString word, QList<PlayerRow> chosen, QString optionalArgument,
                                               QString failures);
    QCoro::Task<> confirmAndKickAll();

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
};
