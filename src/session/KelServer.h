#pragma once

#include "Exchange.h"
#include "HostLookup.h"
#include "Link.h"
#include "SharedInstance.h"
#include "TabSet.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <optional>

class Alerts;
class CatalogueLoader;

/// Variable name to value.
using DvarTable = QHash<QString, QString>;

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
    /// Finds the addresses of host names; null, the initial value, takes every host for an address. Not owned.
    void setHostLookup(HostLookup *lookup) { m_hostLookup = lookup; }
    /// Receives the value of every successful write to rcon_password, for the field that the next connect reads.
    void setPasswordTextBox(std::function<void(const QString &)> setText) { m_passwordTextBox = std::move(setText); }

    QString host() const { return m_host; }
    int port() const { return m_port; }
    /// By this a server is recognised from one run to the next: the host as typed, in lower case, and the port.
    QString serverKey() const;
    /// Another number for each connection: whoever waits sees that it is no longer the one that he meant.
    quint64 connection() const { return m_connection; }
    /// Whether the server answers. Of the connection, so it outlives none.
    Link &link() { return m_link; }
    /// Tells of failures of this session.
    Alerts &alerts() { return m_alerts; }
    bool isConnected() const { return m_isConnected; }
    bool isRanked() const { return m_isRanked; }
    bool playlistsActive() const { return m_playlistsActive; }

    /// Connects and reports failures itself. Everything until the mode is known uses the password given here.
    /// isConnected() may stay true after a failure: only disconnect() ends a connection.
    QCoro::Task<> connectToHost(QString host, QString portText, QString password);
    /// Ends the connection and forgets the server's password; nothing is sent. A connect that is under way stops where
    /// it is, without an alert.
    void disconnect();
    /// Ends what is under way at once; its action ends without an alert.
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

    /// What became of the question for one variable that nobody waits for.
    enum class Fetched {
        Known,    ///< and stored
        Unknown,  ///< the server has no such variable
        NoAnswer, ///< it may be asked again
        Refused,  ///< the password was
        CalledOff ///< with the connection
    };
    /// Asks for a variable once and in the background: no alert, no transcript, no history.
    QCoro::Task<Fetched> fetchDvar(QString name);
    /// Asks once for something small, only to hear whether the server answers: link() tells.
    QCoro::Task<> probe();
    /// The same as patiently as a person's command: link() calls the server silent if nothing comes.
    QCoro::Task<> probePatiently();
    /// Looks the server's name up anew. The next request goes to the first address unless the old one is still there.
    QCoro::Task<> lookUpAgain();
    /// Whether the value of a variable is still to be asked for.
    bool isAwaited(const QString &name) const { return m_awaited.contains(name); }
    void setAwaited(const QString &name, bool isAwaited);
    void forgetAwaited();
    /// The variables of the catalogues that go with the server's mode, each once.
    QStringList cataloguedDvars() const;

    /// Reads all variables anew and stores nothing. @return nothing when the server does not tell them.
    QCoro::Task<std::optional<DvarTable>> dumpDvars();
    /// Stores them beside those that they lack. @return the catalogued ones that have another value now.
    QStringList takeDvars(const DvarTable &dumped);
    /// Brings tabs and catalogues to the mode that the variables tell.
    QCoro::Task<> followMode();
    /// The password that the next request carries.
    void setPassword(const QString &password);

    /// The tabs that the window shows now: those of the mode that the last connect found, or that was typed since.
    TabSet tabSet() const { return m_tabSet; }
    void setupTabsForPlaylistsAndRanked();

    // What the game cannot hold is replaced by something plain (GameText), or the reply is a refusal and nothing is
    // sent. In what writes a password nothing is replaced.

    /// Sends a console command; command and reply go into the transcript, a failure as a line of its own.
    /// @param arrived  gets each datagram's text when it comes, as the transcript does.
    QCoro::Task<Reply> sendCommand(QString command, Arrived arrived = {});
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
    /// A line about what stands before it.
    void appendConsoleNote(const QString &note);

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
    void tabSetChanged();
    /// The last tab is to come to the front: the console stays there when the tabs are arranged anew.
    void lastTabRequested();
    void consoleCleared();
    void consoleMessageAppended(const QString &text);
    /// What is to be said about the text before it; no text of the server's.
    void consoleNoteAppended(const QString &note);
    void commandHistoryChanged();
    void lookUpBegan(const QString &host);
    void lookUpEnded();
    /// Whether a request that somebody waits for is on its way, or its reply.
    void exchangeUnderWayChanged(bool isUnderWay);
    /// A variable was written that the session does not hold.
    void unknownDvarWritten(const QString &name);
    /// A variable has become known after the connect.
    void dvarFetched(const QString &name);

private:
    /// The only way to the exchange: what the game cannot hold does not pass.
    QCoro::Task<Reply> send(Request request, Arrived arrived = {});
    Request requestFor(const QString &command, const QString &password) const;
    QCoro::Task<Reply> ask(QString command, QString password);
    /// Puts a command into the history, and into the transcript on a line of its own.
    void echo(const QString &command);
    QCoro::Task<Reply> writeDvar(QString name, QString value, bool isSingle);
    QCoro::Task<> failConnecting(QString title, QString text);
    QCoro::Task<bool> fetchRequiredDvars(QString password);
    QCoro::Task<HostAddresses> lookUp(QString host);
    QCoro::Task<> dumpOnceMore(QString password);
    QCoro::Task<> followCatalogues();
    void takeDump(const QString &dump);
    void announceDvars();
    void appendEnd(const Reply &reply);
    QString rconPassword() const;
    void readMode();
    void setConnected(bool isConnected);
    void forgetPassword();

    Exchange &m_exchange;
    Alerts &m_alerts;
    CatalogueLoader *m_catalogueLoader = nullptr;
    HostLookup *m_hostLookup = nullptr;
    Link m_link;
    std::function<void(const QString &)> m_passwordTextBox;

    QString m_host;
    QString m_address; ///< that the host was found to have
    int m_port = 0;
    quint64 m_connection = 0;
    int m_exchangesUnderWay = 0;
    bool m_isConnected = false;
    bool m_isRanked = false;
    bool m_playlistsActive = false;
    /// Counts cancellations, so that a connect under way sees after a wait that it was called off.
    quint64 m_cancellations = 0;
    DvarTable m_dvars;
    QSet<QString> m_awaited;     ///< variables that are still to be asked for
    QTimer m_announcing;         ///< the next dvarListChanged() for fetched variables
    QSet<QString> m_dumpedTwice; ///< servers that were asked again because their dump seemed to lack a part
    TabSet m_tabSet = TabSet::None;
    QStringList m_commandHistory;
    int m_commandHistoryCursor = 0;
    bool m_isLineOpen = false; ///< the transcript does not end with a line feed
    SharedInstance<KelServer> m_shared{this};
};
