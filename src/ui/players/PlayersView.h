#pragma once

#include "PlayerRoster.h"
#include "TabPage.h"

#include <QPointer>

class ActionQueue;
class Alerts;
class KelServer;
class PlaceholderTable;
class PlayerCountLabel;
class PlayerCommands;
class PlayerSendMessage;
class QAction;
class QCheckBox;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTimer;

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
    void restoreLayout(const Preferences &preferences) override;
    void saveLayout(Preferences &preferences) const override;

    /// Fetches the list; a refresh that is not due (not connected, another tab) or that fails leaves it as it is.
    QCoro::Task<> updatePlayerList();

    /// Writes `players` to `path`, after asking if it exists.
    QCoro::Task<> savePlayerListTo(QString path, QList<PlayerRow> players);

public slots:
    void refreshPlayersButtonPressed();
    void autoupdatePlayerChanged();
    void autoupdatePlayerTimeChanged();
    void kickPlayerButtonPressed();
    void banPlayerButtonPressed();
    void tempBanPlayerButtonPressed();
    void messagePlayerButtonPressed();
    void sendMessagePanelDidEnd();
    void kickAll();
    void savePlayerListButtonPressed();

private:
    void setUpControls();
    void setUpTable();
    void layOut();
    void connectControls();
    void connectSession();
    void updateControls();
    void updatePlaceholder();
    void connectionDidBegin();
    void connectionDidChange(bool isConnected);
    void setupAutoupdatePlayerTimer();
    void refreshByItself();
    bool isRefreshDue() const;
    QCoro::Task<> refresh(bool wasAnswering);

    QPushButton *refreshPlayersButton;
    QPushButton *kickPlayerButton;
    QPushButton *banPlayerButton;
    QPushButton *tempBanPlayerButton;
    QPushButton *messagePlayerButton;
    QPushButton *kickAllButton;
    QPushButton *savePlayerListButton;
    QCheckBox *autoUpdatePlayers;
    QSpinBox *autoUpdatePlayersTime;
    QLineEdit *playerFilterField;
    PlaceholderTable *playersTableView;
    PlayerCountLabel *playerCountLabel = nullptr;
    PlayerSendMessage *playerSendMessagePanel;
    QTimer *autoupdatePlayerTimer;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    PlayerRoster *m_roster;
    PlayerCommands *m_commands;
    QPointer<QAction> m_refreshAction; ///< in the menu
    QList<ChosenPlayer> m_recipients;  ///< of the message that is being written
    bool m_isInFront = false;
    bool m_isRefreshWaiting = false;
    bool m_isConnecting = false; ///< the connect that is under way fetches the list by itself
};
