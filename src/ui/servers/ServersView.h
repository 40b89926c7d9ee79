#pragma once

#include "ArrayController.h"
#include "SavedServers.h"

#include <QCoroTask>

#include <QUndoStack>
#include <QWidget>

class ActionQueue;
class Alerts;
class PlaceholderTable;
class QAction;
class QLineEdit;
class QPushButton;

/// Where the form says to connect to.
struct ServerForm {
    QString host;
    QString port;
    QString password;
};

/// The pane on the left: where to connect to, from the list of saved servers or by the form.
class ServersView : public QWidget
{
    Q_OBJECT
public:
    /// Reads the file of saved servers. Everything handed in outlives the view.
    ServersView(SavedServers &savedServers, ActionQueue &actions, Alerts &alerts, QWidget *parent = nullptr);

    /// Reads the file of saved servers anew; one that cannot be read leaves the list empty and says so in its place.
    void loadSavedServersList();
    /// Stores the password of a saved server, and shows it if that server is selected.
    void storePassword(const QString &label, const QString &password);

    /// Deletions of saved servers. A step keeps the entries as the file holds them, the passwords encrypted.
    QUndoStack *undoStack() { return &m_undoStack; }

    /// While a connect is under way no second one can be asked for.
    void setConnecting(bool isConnecting);
    /// "Disconnect" can be pressed while there is a connection, or one is being made.
    void setConnected(bool isConnected);

    /// The saved server that the text means, by SavedServers::find(), with its password.
    std::optional<SavedServer> savedServerOf(const QString &text) const;
    /// Selects the saved server and puts the cursor into its password.
    void focusSavedPassword(const QString &label);

    /// Without the blanks around host and port; a port that was typed behind the host counts as typed into its field.
    ServerForm form() const;
    void fillForm(const QString &host, const QString &port);
    void setFormPassword(const QString &password);
    void focusFormPassword();
    /// Moves the focus to where filling in the form begins.
    void focusForm();

    /// Connects to where the form says. Its key acts within the pane, also while a table has the focus.
    QAction *connectAction() const { return m_connectAction; }
    QAction *disconnectAction() const { return m_disconnectAction; }

public slots:
    void saveToServerListButtonPressed();
    void connectToSavedServerButtonPressed();
    void deleteSelectionFromTableView();

signals:
    void connectButtonPressed();
    void disconnectButtonPressed();
    void hostwellButtonPressed();
    void savedServerChosen(const SavedServer &server);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    class Deletion;

    void setUpControls();
    void setUpTable();
    void layOut();
    void connectControls();
    void updateControls();
    void splitHostField();
    void showList();
    void showWritten(const SavedServersOutcome &outcome);
    void selectionDidChange();
    void savedPasswordDidChange();
    void choose(const SavedServer &server);
    void report(const SavedServersOutcome &outcome);
    QCoro::Task<> tell(QString text);

    QAction *m_connectAction;
    QAction *m_disconnectAction;
    PlaceholderTable *savedServerTableView;
    ArrayController<SavedServer> *savedServersController;
    QLineEdit *savedPasswordField;
    QPushButton *connectToSavedServerButton;
    QPushButton *disconnectButton;
    QLineEdit *labelField;
    QLineEdit *hostField;
    QLineEdit *portField;
    QLineEdit *passwordField;
    QPushButton *connectButton;
    QPushButton *saveToServerListButton;
    QPushButton *hostwellButton;

    SavedServers &m_savedServers;
    QString m_readError; ///< until something has been written in the place of what could not be read
    ActionQueue &m_actions;
    Alerts &m_alerts;
    QUndoStack m_undoStack;
    bool m_isConnecting = false;
    bool m_isConnected = false;
};
