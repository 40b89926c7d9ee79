#pragma once

#include "Exchange.h"
#include "SharedInstance.h"
#include "TabSet.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

class Alerts;
class CatalogueLoader;

/// The session with the one server that is administered: connection, the catalogue of its variables, the tab set of
/// its mode, writes, the console transcript and its history. The only one who talks to the Exchange.
/// Main thread only. Operations are called by actions that hold a turn; they take none themselves.
class KelServer : public QObject
{
    Q_OBJECT
public:
    /// `exchange` and `alerts` outlive the session. The latest session made is the shared one.
    KelServer(Exchange &exchange, Alerts &alerts, QObject *parent = nullptr);
    ~KelServer() override;

    /// @return the latest session made, or null.
    static KelServer *sharedKelServer();

    /// Catalogues that connecting loads and asks for; null, the initial value, skips these steps. Not owned.
    void setCatalogueLoader(CatalogueLoader *loader) { m_catalogueLoader = loader; }
    /// Receives the value of every successful write to rcon_password, for the field that the next connect reads.
    void setPasswordTextBox(std::function<void(const QString &)> setText) { m_passwordTextBox = std::move(setText); }

    QString host() const { return m_host; }
    int port() const { return m_port; }
    bool isConnected() const { return m_isConnected; }
    bool isRanked() const { return m_isRanked; }
    bool playlistsActive() const { return m_playlistsActive; }

    /// Connects and reports failures itself. Everything until the mode is known uses the password given here.
    /// isConnected() may stay true after a failure: only disconnect() ends a connection.
    QCoro::Task<> connectToHost(QString host, QString portText, QString password);
    /// Ends the connection and forgets the server's password; nothing is sent. A connect that is under way stops where
    /// it is, without an alert.
    void disconnect();
    /// Ends the running exchange within one receive time-out; its action ends without an alert.
    void cancelExchange();
    void setConnectFailed() { clearCommandHistory(); }
    /// Forgets what the server has told of its variables, the password among them.
    void forgetVariables();

    /// Variable name to value, as the server last told it. Cheap: the copy shares its data.
    QHash<QString, QString> dvarList() const { return m_dvars; }
    /// A game server has a few thousand variables; what dumps more is none.
    static constexpr qsizetype mostDumpedDvars = 100'000;
    /// Takes one line of a dump into the catalogue; lines without a quoted, non-empty value are ignored, and so are new
    /// variables when it holds mostDumpedDvars.
    void addDvarLine(QStringView line);
    /// Asks for one variable that the catalogue lacks, with `password`.
    /// @return whether its value was stored; false at once for a name that is already known.
    QCoro::Task<bool> verifyDvar(QString name, QString password);

    /// The tabs that the window shows now: those of the mode that the last connect found, or that was typed since.
    TabSet tabSet() const { return m_tabSet; }
    void setupTabsForPlaylistsAndRanked();

    // What the game cannot hold is replaced by something plain (GameText), or the reply is a refusal and nothing is
    // sent. In what writes a password nothing is replaced.

    /// Sends a console command; command and reply go into the transcript, a failure as a line of its own.
    QCoro::Task<Reply> sendCommand(QString command);
    /// Writes a variable. The catalogue follows a successful write if it holds the name; the reply is not examined.
    QCoro::Task<Reply> setDvar(QString name, QString value);
    /// setDvar() with the first datagram as the whole reply. The server's text goes into the transcript only: the
    /// returned text is empty unless the session is not connected.
    QCoro::Task<Reply> quickSetDvar(QString name, QString value);
    /// Forgets a variable and asks for it anew.
    QCoro::Task<> updateDvarFromServer(QString name);

    /// What Return in the console does with the line: send it, and follow a playlist switch typed by hand.
    QCoro::Task<Reply> consoleInputDidChange(QString text);

    /// Every command sent since the last connect, oldest first, and what was refused: it may be mended.
    QStringList commandHistory() const { return m_commandHistory; }
    int commandHistoryCursor() const { return m_commandHistoryCursor; }
    void addToCommandHistory(const QString &command);
    void clearCommandHistory();
    void appendConsoleMessage(const QString &text);

signals:
    void isConnectedChanged(bool isConnected);
    void dvarListChanged();
    /// A server has answered a connect, also when there was a connection before: what is known of players is void, and
    /// what waits for its turn was meant for the server before.
    void connectionBegan();
    /// A connect has come to its end with everything asked for.
    void didConnect();
    /// A connect was refused for its password; its alert comes next.
    void passwordRefused();
    /// Whether a request is on its way, or its reply.
    void exchangeUnderWayChanged(bool isUnderWay);
    void tabSetChanged();
    /// The last tab is to come to the front: the console stays there when the tabs are arranged anew.
    void lastTabRequested();
    void consoleCleared();
    void consoleMessageAppended(const QString &text);
    void commandHistoryChanged();
    /// Connecting has asked for `done` of `total` catalogued variables.
    void connectProgressed(int done, int total);

private:
    /// The only way to the exchange: what the game cannot hold does not pass.
    QCoro::Task<Reply> send(Request request);
    QCoro::Task<Reply> ask(QString command, QString password);
    /// Puts a command into the history, and into the transcript on a line of its own.
    void echo(const QString &command);
    QCoro::Task<Reply> writeDvar(QString name, QString value, bool isSingle);
    QCoro::Task<> failConnecting(QString title, QString text);
    QCoro::Task<bool> fetchRequiredDvars(QString password);
    QCoro::Task<> followCatalogues(QString password);
    QCoro::Task<> fetchCataloguedDvars(QString password);
    QString rconPassword() const;
    void readMode();
    void setConnected(bool isConnected);
    void forgetPassword();

    Exchange &m_exchange;
    Alerts &m_alerts;
    CatalogueLoader *m_catalogueLoader = nullptr;
    std::function<void(const QString &)> m_passwordTextBox;

    QString m_host;
    int m_port = 0;
    bool m_isConnected = false;
    bool m_isRanked = false;
    bool m_playlistsActive = false;
    int m_exchangesUnderWay = 0;
    /// Counts cancellations, so that a connect under way sees after a wait that it was called off.
    quint64 m_cancellations = 0;
    QHash<QString, QString> m_dvars;
    TabSet m_tabSet = TabSet::None;
    QStringList m_commandHistory;
    int m_commandHistoryCursor = 0;
    bool m_isLineOpen = false; ///< the transcript does not end with a line feed
    SharedInstance<KelServer> m_shared{this};
};
