#pragma once

#include "PlayerRoster.h"
#include "TabPage.h"

class ActionQueue;
class Alerts;
class FilterField;
class KelServer;
class PlaceholderTable;
class PlayerCountLabel;
class PlayerCommands;
class PlayerSendMessage;
class Preferences;
class QAction;
class RefreshTimer;

/// The list of the players on the server, and what can be done to them.
class PlayersView : public TabPage
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    /// @param clock  tells how old the list is.
    PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                QWidget *parent = nullptr, PlayerRoster::Clock clock = &std::chrono::steady_clock::now);

    void fillMenu(QMenu &menu) override;
    void fillFileMenu(QMenu &menu) override;
    /// The list is fetched only while the page is in front, and when it comes there.
    void setInFront(bool isInFront) override;
    QCoro::Task<> didConnect() override;

    /// Fetches the list; a refresh that is not due (not connected, another tab) or that fails leaves it as it is.
    QCoro::Task<> updatePlayerList();

    /// Writes `players` to `path`, after asking if it exists.
    QCoro::Task<> savePlayerListTo(QString path, QList<PlayerRow> players);

public slots:
    void refreshPlayersButtonPressed();
    void kickPlayerButtonPressed();
    void banPlayerButtonPressed();
    void tempBanPlayerButtonPressed();
    void messagePlayerButtonPressed();
    void sendMessagePanelDidEnd();
    void kickAll();
    void savePlayerListButtonPressed();

private:
    void layOut(Preferences &preferences);
    void setUpTable();
    void connectSession();
    /// Follows what is known, selected and connected.
    void updateControls();
    QString placeholder() const;
    void connectionDidBegin();
    void connectionDidChange(bool isConnected);
    void refreshByItself();
    bool isRefreshDue() const;
    QCoro::Task<> refresh(bool wasAnswering);

    RefreshTimer *m_refreshTimer = nullptr;
    FilterField *playerFilterField = nullptr;
    PlaceholderTable *playersTableView = nullptr;
    PlayerCountLabel *playerCountLabel = nullptr;
    PlayerSendMessage *playerSendMessagePanel = nullptr;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    PlayerRoster *m_roster;
    PlayerCommands *m_commands;
    QAction *m_refreshAction;
    QAction *m_kickAction;
    QAction *m_banAction;
    QAction *m_tempBanAction;
    QAction *m_messageAction;
    QAction *m_kickAllAction;
    QAction *m_saveAction;
    QList<ChosenPlayer> m_recipients; ///< of the message that is being written
    bool m_isInFront = false;
    bool m_isRefreshWaiting = false;
    bool m_isConnecting = false; ///< the connect that is under way fetches the list by itself
};
