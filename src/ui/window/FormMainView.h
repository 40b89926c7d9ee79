#pragma once

#include "Alerts.h"
#include "Connecting.h"
#include "Tabs.h"

#include <QCoroTask>

#include <QMainWindow>

#include <memory>

class MainTabs;
class QSplitter;
class QStackedWidget;
class SavedServers;
class ServersView;
class StatusLine;
class UnsavedWork;
class WelcomePage;

/// The main window: composes the servers' pane, the tabs and the status line, keeps their layout, and closes cleanly.
class FormMainView : public QMainWindow
{
    Q_OBJECT
public:
    /// Everything handed in outlives the window.
    FormMainView(const Workplace &workplace, SavedServers &savedServers, QWidget *parent = nullptr);
    ~FormMainView() override;

    /// Connects as one action: status line, session, then what a fresh connection shows.
    void connectTo(ConnectTarget target);
    /// Connects to the label of a saved server or to HOST:PORT, as Connecting has it.
    void connectByCommandLine(const QString &target, const QString &password);

    /// Shows an alert without waiting for it.
    void reportFailure(const QString &title, const QString &text);

signals:
    void demoServerRequested();
    /// The user wants to read about hosting a server.
    void hostingGuideRequested();

protected:
    bool event(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void makeMenus();
    void layOut();
    void connectParts();
    void connectOutcomes();
    void restoreLayout();
    void fitIntoScreen();
    void saveLayout();
    void arrangeTabs();
    void tellOfUnknownSettings(int unknown, int total);
    void showAbout();
    QCoro::Task<> closeAfterQuestion();
    QCoro::Task<> tell(QString title, QString text, AlertManner manner);

    Workplace m_workplace;
    QSplitter *m_splitter;
    QStackedWidget *m_stack;
    ServersView *serversView;
    MainTabs *tabControlMain;
    WelcomePage *welcomePage;
    StatusLine *statusLine;
    std::unique_ptr<UnsavedWork> m_unsavedWork;
    Connecting *m_connecting;
    bool m_hasBeenActive = false;
    bool m_isAskingToClose = false;
};
