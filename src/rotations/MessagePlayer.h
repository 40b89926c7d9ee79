#pragma once

#include "MessageRotation.h"
#include "OneShotTimer.h"

#include <QCoroTask>

#include <QList>
#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class ActionQueue;
class KelServer;
class Preferences;

/// Sends the rows of a message table to the server, one after another. Each message is an action with a turn of its
/// own; the duration of its row is counted from the server's answer. Main thread only.
class MessagePlayer : public QObject
{
    Q_OBJECT
public:
    enum PlayState { Stopped = 0, Playing = 1 };
    using Rows = QList<std::shared_ptr<MessageRotationInst>>;

    /// Everything handed in outlives the player.
    /// @param rows   those of the table, as they are at the moment.
    /// @param timer  waits out the duration of a message.
    MessagePlayer(KelServer &server, ActionQueue &actions, Preferences &preferences, std::function<Rows()> rows,
                  std::unique_ptr<OneShotTimer> timer);

    /// The command that has everybody read `text`.
    static QString sayCommand(const QString &text);
    /// What alerts call this command.
    static QString sayName() { return QStringLiteral("Say"); }

    PlayState state() const { return m_state; }
    int index() const { return m_index; }
    /// Stores the index, brought into the table; 0 when the table is empty.
    void setIndex(int index);
    std::shared_ptr<const MessageRotationInst> entryOnAir() const { return m_entryOnAir; }
    bool isSending() const { return m_isSending; }
    std::optional<std::chrono::milliseconds> remainingTime() const { return m_timer->remaining(); }

    void start();
    void stop();
    void advance();

signals:
    void stateChanged(MessagePlayer::PlayState state);
    void indexChanged(int index);
    void entryOnAirChanged();
    /// It was started or stopped, be it anew.
    void touched();

private:
    void callOff();
    void setState(PlayState state);
    void setEntryOnAir(std::shared_ptr<const MessageRotationInst> entry);
    void showCurrent();
    QCoro::Task<> show(std::shared_ptr<const MessageRotationInst> entry, QString line, quint64 showing);
    void waitFor(const QString &duration, qint64 shortest);

    KelServer &m_server;
    ActionQueue &m_actions;
    Preferences &m_preferences;
    std::function<Rows()> m_rows;
    std::unique_ptr<OneShotTimer> m_timer;
    PlayState m_state = Stopped;
    int m_index = 0;
    bool m_isSending = false;
    quint64 m_showing = 0; ///< tells a message that was called off from the one that is due
    std::shared_ptr<const MessageRotationInst> m_entryOnAir;
};
