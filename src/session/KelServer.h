#pragma once

#include "Console.h"
#include "DvarReplies.h"
#include "Exchange.h"
#include "HostLookup.h"
#include "Link.h"
#include "Outcome.h"
#include "SharedInstance.h"
#include "TabSet.h"

#include <QCoroTask>

#include <QObject>
#include <QSet>
#include <QStringList>

#include <functional>

class Alerts;
class CatalogueLoader;

/// The session with the one server that is administered: connection, the catalogue of its variables, the tab set of
/// its mode, commands and writes. Main thread only.
/// Operations are called by actions that hold a turn; they take none themselves.
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
    /// That of the link: another number for each connection.
    quint64 connection() const { return m_link.connection(); }
    /// Whether the server answers. Of the connection, so it outlives none.
    Link &link() { return m_link; }
    /// Transcript and history of what is sent here.
    Console &console() { return m_console; }
    /// Tells of failures of this session.
    Alerts &alerts() { return m_alerts; }
    bool isConnected() const { return m_link.kind() != Link::Kind::Closed; }
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
    void setConnectFailed() { m_console.clearCommandHistory(); }
    /// Forgets what the server has told of its variables, the password among them.
    void forgetVariables();

    /// Variable name to value, as the server last told it. Cheap: the copy shares its data.
    DvarTable dvarList() const { return m_dvars; }
    /// Takes one line of a dump into the catalogue; lines without a quoted, non-empty value are ignored, and so are new
    /// variables when it holds mostDumpedDvars.
    void addDvarLine(QStringView line) { takeDump(line, &m_dvars); }
    /// Asks for one variable that the catalogue lacks, with `password`.
    /// @return whether its value was stored; false at once for a name that is already known.
    QCoro::Task<bool> verifyDvar(QString name, QString password);

    enum class Asking {
        Patiently,       ///< as a person's command is sent: link() calls the server silent if nothing comes
        InTheBackground, ///< once, as nobody waits for it
        Probing          ///< once, of a server that is silent
    };
    /// Asks for something without transcript, history and alert.
    QCoro::Task<Reply> ask(QString command, Asking asking = Asking::Patiently);
    /// Takes a value that the server has told.
    void takeDvar(const QString &name, const QString &value);
    /// Forgets a variable that the server no longer knows; the required ones stay, as without them there is no session.
    void dropDvar(const QString &name);
    /// Takes what a later dump tells. @return the catalogued variables that have another value now.
    QStringList takeDvars(const DvarTable &dumped);
    /// The variables of the catalogues that go with the server's mode, each once.
    QStringList cataloguedDvars() const;
    /// Brings tabs and catalogues to the mode that the variables tell.
    QCoro::Task<> followMode();
    /// Looks the server's name up anew. The next request goes to the first address unless the old one is still there.
    QCoro::Task<> lookUpAgain();
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

    /// Lets everybody know what became of something.
    void tellOutcome(const Outcome &outcome) { emit outcomeKnown(outcome); }

signals:
    void isConnectedChanged(bool isConnected);
    /// All variables may have changed.
    void dvarListChanged();
    /// One variable has become known or another one, or was told anew.
    void dvarChanged(const QString &name);
    /// The server has taken a write to a variable, known or not; dvarChanged() follows if it is known.
    void dvarWritten(const QString &name);
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
    void lookUpBegan(const QString &host);
    /// Its addresses are known, or that there are none; not told once it was called off.
    void lookUpEnded();
    /// What became of one thing that was done, here or with a file.
    void outcomeKnown(const Outcome &outcome);

private:
    Request requestFor(const QString &command, const QString &password) const;
    /// Sends what a person has to see, and shows the reply.
    QCoro::Task<Reply> converse(Request request, Arrived arrived = {});
    QCoro::Task<Reply> writeDvar(QString name, QString value, bool isSingle);
    QCoro::Task<> failConnecting(QString title, QString text);
    /// @return the dump of the first address that answers; nothing when the connect is over, which has been told.
    QCoro::Task<std::optional<Reply>> reach(QString host, int port, QString password);
    QCoro::Task<bool> fetchRequiredDvars(QString password);
    QCoro::Task<HostAddresses> lookUp(QString host);
    QCoro::Task<> dumpOnceMore(QString password);
    QCoro::Task<> followCatalogues();
    QString rconPassword() const;
    void readMode();
    void setConnected(bool isConnected);
    void forgetPassword();

    Exchange &m_exchange;
    Alerts &m_alerts;
    CatalogueLoader *m_catalogueLoader = nullptr;
    HostLookup *m_hostLookup = nullptr;
    Link m_link;
    Console m_console;
    std::function<void(const QString &)> m_passwordTextBox;

    QString m_host;
    QString m_address; ///< that the host was found to have
    int m_port = 0;
    bool m_isRanked = false;
    bool m_playlistsActive = false;
    DvarTable m_dvars;
    QSet<QString> m_dumpedTwice; ///< servers that were asked again because their dump seemed to lack a part
    TabSet m_tabSet = TabSet::None;
    SharedInstance<KelServer> m_shared{this};
};
