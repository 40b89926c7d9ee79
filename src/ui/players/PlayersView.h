#pragma once

#include "ActionQueue.h"
#include "ArrayController.h"
#include "PlayerList.h"

#include <QCoroTask>

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QWidget>

#include <chrono>

class Alerts;
class KelServer;
class PlaceholderTable;
class PlayerSendMessage;
class Preferences;

/// The list of the players on the server, and what can be done to them.
class PlayersView : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    PlayersView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                QWidget *parent = nullptr);
    ~PlayersView() override;

    /// The label of the tab in front: the list is fetched only while it is "Players".
    void setSelectedTabLabel(const QString &label) { m_selectedTabLabel = label; }

    /// Fetches the list; a refresh that is not due (not connected, another tab) or that fails leaves it as it is.
    QCoro::Task<> updatePlayerList();
    void setupAutoupdatePlayerTimer();

    /// Writes `players` to `path`, after asking if it exists.
    QCoro::Task<> savePlayerListTo(QString path, QList<PlayerRow> players);

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
    PlayerSendMessage *playerSendMessagePanel = nullptr;
    QTimer autoupdatePlayerTimer;

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
    void layOut();
    void connectControls();
    void selectionDidChange();
    void updatePlaceholder();
    void forgetPlayers();
    bool isRefreshDue() const;
    void refreshLater(std::chrono::seconds delay);
    QCoro::Task<> refresh();
    /// @param failures  what is to be told already, as lines of the summary alert.
    QCoro::Task<> command(QString word, QList<PlayerRow> chosen, QString argument, std::chrono::seconds refreshAfter,
                          QString failures = {});
    QCoro::Task<> sendCommandToSelectedPlayers(QString word, QList<PlayerRow> chosen, QString optionalArgument,
                                               QString failures);
    QCoro::Task<> confirmAndKickAll();

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    QString m_selectedTabLabel;
    QList<PlayerRow> m_recipients; ///< of the message that is being written
    bool m_isRefreshWaiting = false;
    bool m_isListFetched = false;
};
