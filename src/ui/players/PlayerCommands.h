#pragma once

#include "PlayerRoster.h"

#include <QCoroTask>

#include <QObject>

#include <chrono>

class ActionQueue;
class Alerts;
class KelServer;
class ServerAction;

/// What an administrator does to players. Each operation is an action that waits for its turn and tells of all its
/// failures in one alert. Numbers go to others when players leave: right before each command its player is looked up in
/// the newest list, and an older list is read again first; so is one from before a command that puts players out.
class PlayerCommands : public QObject
{
    Q_OBJECT
public:
    /// Everything handed in outlives the commands.
    PlayerCommands(KelServer &server, PlayerRoster &roster, ActionQueue &actions, Alerts &alerts,
                   QObject *parent = nullptr);

    void kick(const QList<ChosenPlayer> &players);
    void ban(const QList<ChosenPlayer> &players);
    void tempBan(const QList<ChosenPlayer> &players);
    void tell(const QList<ChosenPlayer> &recipients, const QString &message);
    /// Asks first.
    void kickAll();

signals:
    /// The list shows what a command did when it is fetched after `delay`.
    void refreshWanted(std::chrono::seconds delay);

private:
    /// @param name  of the command, in the words of its button.
    QCoro::Task<> command(QString name, QString word, QList<ChosenPlayer> chosen, QString argument,
                          std::chrono::seconds refreshAfter);
    QCoro::Task<bool> mayHitHidden(QString word, QStringList hidden);
    /// Tells why, if it cannot be read. @return whether it is known now who has which number.
    QCoro::Task<bool> readListAgain(ServerAction *action);
    QCoro::Task<> sendCommandToSelectedPlayers(ServerAction *action, QString word, QList<ChosenPlayer> chosen,
                                               QString optionalArgument);
    QCoro::Task<> confirmAndKickAll();

    KelServer &m_server;
    PlayerRoster &m_roster;
    ActionQueue &m_actions;
    Alerts &m_alerts;
};
