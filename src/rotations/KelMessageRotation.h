#pragma once

#include "MessagePlayer.h"
#include "MessageRotation.h"
#include "RotationStoreOf.h"
#include "SharedInstance.h"

#include <memory>

class ActionQueue;
class KelServer;

/// The store of message rotations, the rows of the message table, and the player that sends them to the server.
/// Main thread only. Every message that is sent is an action with a turn of its own.
class KelMessageRotation final : public RotationStoreOf<MessageRotationInst>
{
    Q_OBJECT
public:
    using PlayState = MessagePlayer::PlayState;
    using enum MessagePlayer::PlayState;

    /// What the player stands on. All of it outlives the store.
    struct Surroundings {
        Preferences &preferences;
        Alerts &alerts;
        KelServer &server;
        ActionQueue &actions;
    };

    /// @param folder  where the file is.
    /// @param timer   waits out the duration of a message; a precise one of its own when it is null.
    /// The latest store made is the shared one.
    KelMessageRotation(Surroundings surroundings, const QString &folder, std::unique_ptr<OneShotTimer> timer = nullptr,
                       QObject *parent = nullptr);

    /// @return the latest store made, or null.
    static KelMessageRotation *sharedKelMessageRotation() { return SharedInstance<KelMessageRotation>::latest(); }

    /// Reads the file anew and opens the rotation that was open; keeps everything when there is no file to read.
    QCoro::Task<> loadMessageRotation() { return load(); }
    /// Nothing until a file was read or a rotation saved: until then newRotationNamed() keeps nothing.
    std::optional<Dictionary> messageRotationList() const { return rotations(); }

    /// Appends one row before the first wait; alerts when the table is full.
    QCoro::Task<> addMessageToCurrentRotation(QString message, QString duration);

    PlayState currentPlayState() const { return m_player.state(); }
    /// The row of the message that is shown: a number, which stays when rows are moved or removed.
    int currentMessageIndex() const { return m_player.index(); }
    /// Stores the index, brought into the table; 0 when the table is empty.
    void setCurrentMessageIndex(int index) { m_player.setIndex(index); }
    /// The message that was shown last while playing, wherever its row is now; null when stopped.
    std::shared_ptr<const MessageRotationInst> entryOnAir() const { return m_player.entryOnAir(); }
    /// Where entryOnAir() is now; -1 when it is nowhere in the table.
    int rowOnAir() const { return static_cast<int>(entries().indexOf(m_player.entryOnAir())); }
    /// The message on air is on its way to the server, or waits for its turn.
    bool isSending() const { return m_player.isSending(); }
    /// How long until the next message; nothing while none is waited for.
    std::optional<std::chrono::milliseconds> remainingTime() const { return m_player.remainingTime(); }

    /// Plays from the first row. Without rows it only gives up what was due next.
    void startRotation() { m_player.start(); }
    /// Stops; a message that waits for its turn is not sent any more. Happens by itself when the connection ends;
    /// closing calls it.
    void stopRotation() { m_player.stop(); }
    /// Goes on to the next row, and past the last one to the first row or to a stop, as the preference has it.
    void advanceRotation() { m_player.advance(); }

    /// Without a connection every message would only raise an alert.
    bool startEnabled() const;
    bool stopEnabled() const { return currentPlayState() == Playing; }
    void updateTransportButtons() { emit transportButtonsChanged(startEnabled(), stopEnabled()); }

    QString quickMessageText() const { return m_quickMessageText; }
    void setQuickMessageText(const QString &text);
    /// Hands the quick message over as it stands, and its text goes at once: what is typed from now on is the next one.
    /// It comes back when the turn to send it was refused, or the game cannot hold it, and nothing else has been typed.
    /// After a failure it does not: a server that did not answer may have said it.
    void sendQuickMessage();

signals:
    void playStateChanged(MessagePlayer::PlayState state);
    void currentMessageIndexChanged(int index);
    /// Another message is on air, or the one that is has been sent.
    void entryOnAirChanged();
    void transportButtonsChanged(bool startEnabled, bool stopEnabled);
    void quickMessageTextChanged(const QString &text);

private:
    void connectionDidChange(bool isConnected);
    QCoro::Task<> sendText(QString text);

    KelServer &m_server;
    ActionQueue &m_actions;
    MessagePlayer m_player;
    QString m_quickMessageText;
    int m_quickMessagesOnTheirWay = 0; ///< actions that have not ended
    SharedInstance<KelMessageRotation> m_shared{this};
};
