#pragma once

#include "ArrayController.h"
#include "SavedServers.h"

#include <QCoroTask>

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

class ActionQueue;
class Alerts;
class PlaceholderTable;

/// The pane on the left: where to connect to, from the list of saved servers or by the form.
class ServersView : public QWidget
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    ServersView(SavedServers &savedServers, ActionQueue &actions, Alerts &alerts, QWidget *parent = nullptr);
    ~ServersView() override;

    /// While a connect is under way no second one can be asked for.
    void setConnecting(bool isConnecting);
    /// "Disconnect" can be pressed while there is a connection, or one is being made.
    void setConnected(bool isConnected);
    void fillForm(const QString &host, const QString &port);
    /// Reads the file of saved servers, unless it has been read; one that cannot be read leaves the list empty and says
    /// so in its place. Until then the list shows nothing, so that the window is not kept waiting for it.
    void loadSavedServersList();
    /// Stores the password of a saved server, and shows it if that server is selected.
    void storePassword(const QString &label, const QString &password);

    PlaceholderTable *savedServerTableView;
    ArrayController<SavedServer> *savedServersController;
    QLineEdit *savedPasswordField;
    QPushButton *connectToSavedServerButton;
    QLineEdit *labelField;
    QLineEdit *hostField;
    QLineEdit *portField;
    QLineEdit *passwordField;
    QPushButton *connectButton;
    QPushButton *saveToServerListButton;
    QPushButton *disconnectButton;
    QPushButton *hostwellButton;

public slots:
    void controlTextDidChange();
    void saveToServerListButtonPressed();
    void connectToSavedServerButtonPressed();
    void deleteSelectionFromTableView();
    void hostwellButtonPressed();

signals:
    void connectButtonPressed();
    void disconnectButtonPressed();
    void savedServerChosen(const SavedServer &server);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void nameControls();
    void layOut();
    void makeTable();
    void showWritten(const SavedServersOutcome &outcome);
    void connectControls();
    void showList();
    void selectionDidChange();
    void savedPasswordDidChange();
    void report(const SavedServersOutcome &outcome);
    QCoro::Task<> tell(QString text);

    SavedServers &m_savedServers;
    QString m_readError; ///< until something has been written in the place of what could not be read
    ActionQueue &m_actions;
    Alerts &m_alerts;
    bool m_isConnecting = false;
    bool m_isConnected = false;
};
