#pragma once

#include "ActionQueue.h"
#include "Tabs.h"

#include <QCoroTask>

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>

class MainTabs;
class ServersView;
class StatusLine;
class UnsavedWork;
struct SavedServer;

/// Where a connect goes and under which label it is shown.
struct ConnectTarget {
    QString label;
    QString host;
    QString port; ///< as typed
    QString password;
    /// Follows a later change of the server's password, if set.
    std::function<void(const QString &)> passwordTextBox;
    /// Moves the cursor to where the password stands, after the server has refused it; if set.
    std::function<void()> focusPassword = {};
    /// The password was asked for: passwordTextBox gets it once the server has taken it.
    bool isPasswordNew = false;
};

/// Connects the session and ends its connection: asks about unsaved work and a missing password, loads the catalogues,
/// tells the status line how far it has come, and lets the pages fetch what they show at first.
class Connecting : public QObject
{
    Q_OBJECT
public:
    /// The parts of the window that take part in connecting. All of them outlive this.
    struct Parts {
        ServersView &servers;
        MainTabs &tabs;
        StatusLine &status;
        UnsavedWork &unsavedWork;
    };

    Connecting(const Workplace &workplace, const Parts &parts, QObject *parent = nullptr);

    /// Connects as one action. Does nothing while a connect waits or is under way.
    void connectTo(ConnectTarget target);
    /// Connects to where the command line says, the label of a saved server or HOST:PORT.
    /// @param password  empty: that of the saved server with this label or address; without one it is asked for.
    void connectByCommandLine(const QString &target, const QString &password);

public slots:
    void connectByForm();
    void connectToSavedServer(const SavedServer &server);
    void disconnectFromServer();
    /// Asks for the password that the server takes now, and tries it once.
    void askForNewPassword();

private:
    ConnectTarget formTarget() const;
    ConnectTarget savedTarget(const SavedServer &server) const;
    void askForPassword(const ConnectTarget &target);
    void endConnection();
    void showConnecting(const QString &label);
    void showConnected();
    void comeBack(std::chrono::milliseconds silence, int differences);
    QCoro::Task<> showWhatCameBack();
    /// Lets the pages fetch what they show at first, as long as the action goes on.
    QCoro::Task<> letPagesFetch(const ActionQueue::Turn *turn);
    QCoro::Task<> connectAction(ConnectTarget target);
    QCoro::Task<> loadGameData();
    QCoro::Task<> connectToServerWithLabel(ConnectTarget target);
    QCoro::Task<> tell(QString title, QString text);

    Workplace m_workplace;
    Parts m_parts;
    QString m_statusBeforeConnect;
    ConnectTarget m_target;           ///< of the latest connect that began
    QTimer m_welcomeBack;             ///< while the status line tells of a server that came back
    QString m_triedPassword;          ///< until the server has taken it
    int m_connects = 0;               ///< that wait or are under way
    bool m_isComplete = false;        ///< the latest connect has come to its end
    bool m_isPasswordRefused = false; ///< by the server of the latest connect
};
