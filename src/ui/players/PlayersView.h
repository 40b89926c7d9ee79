#pragma once

#include "ArrayController.h"
#include "PlayerList.h"
#include "TabPage.h"

class ActionQueue;
class Alerts;
class KelServer;
class PlaceholderTable;
class PlayerCommands;
class PlayerSendMessage;
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
    PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                QWidget *parent = nullptr);

    void fillMenu(QMenu &menu) override;
    void fillFileMenu(QMenu &menu) override;
    /// The list is fetched only while the page is in front.
    void setInFront(bool isInFront) override { m_isInFront = isInFront; }
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
    void selectionDidChange();
    void updatePlaceholder();
    void forgetPlayers();
    void setupAutoupdatePlayerTimer();
    bool isRefreshDue() const;
    QCoro::Task<> refresh();

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
    ArrayController<PlayerRow> *playersController;
    PlayerSendMessage *playerSendMessagePanel;
    QTimer *autoupdatePlayerTimer;

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    PlayerCommands *m_commands;
    QList<PlayerRow> m_recipients; ///< of the message that is being written
    bool m_isInFront = false;
    bool m_isRefreshWaiting = false;
    bool m_isListFetched = false;
};
