#pragma once

#include "GameCatalogues.h"
#include "Rotations.h"
#include "TabItem.h"

#include <QCoroTask>

#include <QMainWindow>
#include <QMap>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QUndoGroup>

#include <functional>

class ActionQueue;
class Alerts;
class ConfigBuilderView;
class ConsoleView;
class KelServer;
class MapsView;
class MessagesView;
class PlayersView;
class QHeaderView;
class PlaylistsView;
class RotationPane;
class Preferences;
class SavedServers;
class ServersView;
class SettingsView;
struct SavedServer;
class StatusLine;
class WelcomePage;

/// Where a connect goes and under which label it is shown.
struct ConnectTarget {
    QString label;
    QString host;
    QString port; ///< as typed
    QString password;
    /// Follows a later change of the server's password, if set.
    std::function<void(const QString &)> passwordTextBox;
};

/// The main window: composes the views and runs the connect sequence.
class FormMainView : public QMainWindow
{
    Q_OBJECT
public:
    /// Everything handed in outlives the window.
    FormMainView(KelServer &server, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                 GameCatalogues catalogues, Rotations rotations, SavedServers &savedServers, QWidget *parent = nullptr);
    ~FormMainView() override;

    /// Connects as one action: status line, session, then what a fresh connection shows.
    void connectTo(ConnectTarget target);
    /// Fills the quick-connect form and connects; without a password it is asked for first.
    void quickConnect(const QString &host, const QString &port, const QString &password);

    /// Shows an alert without waiting for it.
    void reportFailure(const QString &title, const QString &text);

    /// Makes the views behind the tabs, if that is not done yet: the first frame comes without them, they follow at
    /// once.
    void makeViews();

    ServersView *serversView = nullptr;
    QTabWidget *tabControlMain = nullptr;
    WelcomePage *welcomePage = nullptr;
    StatusLine *statusLine = nullptr;
    // Null until makeViews().
    PlayersView *playersView = nullptr;
    MapsView *mapsView = nullptr;
    PlaylistsView *playlistsView = nullptr;
    MessagesView *messagesView = nullptr;
    SettingsView *unrankedSettingsView = nullptr;
    SettingsView *rankedSettingsView = nullptr;
    ConfigBuilderView *configBuilderView = nullptr;
    ConsoleView *consoleView = nullptr;

public slots:
    void connectButtonPressed();
    void connectToSavedServer(const SavedServer &server);
    void disconnectButtonPressed();

signals:
    void demoServerRequested();
    /// Once, when the window can be seen: what may wait until then is done now, just before the views are made.
    void firstFrameShown();
    /// The config builder has come to the front for the second time in the life of the process: its tables select all
    /// their rows, and leave later visits to the user's own choice.
    void configBuilderVisitedAgain();

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void layOut();
    void makeMenus();
    void makeServerMenu();
    void showMenuWithTab(QMenu *menu, TabItem item);
    void makeFileMenu();
    void makeEditMenu();
    void fillPlayersMenu();
    void fillMapsMenu();
    void fillMessagesMenu();
    void fillConfigurationMenu();
    RotationPane *currentRotationPane() const;
    void insertViews();
    void makeViewMenu();
    void connectControls();
    void saveLayout();
    void arrangeTabs();
    void bringToFront(int tab);
    void selectedTabDidChange();
    /// The tables whose columns are kept between runs, with where they are kept.
    QList<std::pair<const char *, QHeaderView *>> tableHeaders() const;
    void restoreViewLayouts();
    void countConfigBuilderVisit(const QString &tabLabel);
    ConnectTarget quickConnectTarget() const;
    /// What is being typed into a rotation counts.
    void finishEditing();
    void askForPassword(const ConnectTarget &target);
    void showAbout();
    QCoro::Task<> connectAction(ConnectTarget target);
    /// Asks about what no file holds yet, before it would be lost. @return whether to go on.
    QCoro::Task<bool> settleUnsavedWork();
    QCoro::Task<> closeAfterQuestion();
    QCoro::Task<> loadGameData();
    QCoro::Task<> connectToServerWithLabel(ConnectTarget target);
    QCoro::Task<> tell(QString title, QString text);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Preferences &m_preferences;
    GameCatalogues m_catalogues;
    Rotations m_rotations;
    QSplitter *m_splitter;
    QStackedWidget *m_stack;
    QMap<TabItem, QWidget *> m_pages;
    QMenu *m_playersMenu = nullptr;
    QMenu *m_mapsMenu = nullptr;
    QMenu *m_messagesMenu = nullptr;
    QMenu *m_configurationMenu = nullptr;
    QUndoGroup m_undoGroup;
    QString m_statusBeforeConnect;
    bool m_hasPainted = false;
    bool m_isAskingToClose = false;
    int m_connects = 0; ///< that wait or are under way
};
