#include "KelServer.h"

#include "GameText.h"
#include "HostLookup.h"
#include "QuotedStrings.h"
#include "Secrets.h"

#include <utility>

using namespace std::chrono_literals;

static Reply notConnected()
{
    return Reply{RConResultError, KelServer::tr("Not connected to a game server."), false};
}

/// As far as the line tells: it begins with the variable, or with a word that sets it, and so may each command of
/// several. What is said to players is no password, although it may speak of one.
static bool writesPassword(const QString &command)
{
    for (const QString &single : command.split(QLatin1Char(';'))) {
        const QStringList words = single.simplified().split(QLatin1Char(' '));
        const QString &verb = words.constFirst();
        const bool isChat = verb.startsWith(QLatin1String("say")) || verb == QLatin1String("tell");
        if (!isChat && (holdsPassword(verb) || holdsPassword(words.value(1))))
            return true;
    }
    return false;
}

/// @return nothing for what the game can hold. The characters of a password are named nowhere.
static QString reasonOfRefusal(const Request &request)
{
    const GameText command = GameText::asItStands(request.command);
    const bool isPasswordSendable = GameText::asItStands(request.password).isSendable();
    if (isPasswordSendable && command.isSendable())
        return {};
    if (!isPasswordSendable || writesPassword(request.command))
        return KelServer::tr("The game cannot hold a character of this password. Nothing was sent.");
    return KelServer::tr("%1 Nothing was sent.").arg(command.complaint());
}

/// What a reply tells of its way, beside its text.
static QStringList marksOf(const Reply &reply)
{
    QStringList marks;
    if (reply.sends == 2)
        marks.append(KelServer::tr("sent twice"));
    else if (reply.sends > 2)
        marks.append(KelServer::tr("sent three times"));
    if (reply.doubled > 0)
        marks.append(KelServer::tr("a part came twice"));
    if (reply.mayBeIncomplete)
        marks.append(KelServer::tr("the end may be missing"));
    return marks;
}

KelServer::KelServer(Exchange &exchange, Alerts &alerts, QObject *parent)
    : QObject(parent), m_exchange(exchange), m_alerts(alerts), m_link(exchange)
{
    connect(this, &KelServer::consoleCleared, this, [this] { m_isLineOpen = false; });
    m_exchange.setCameLate([this](const QString &command, const QString &text) {
        appendConsoleNote(tr("came late, to “%1”").arg(command));
        appendConsoleMessage(text);
    });
    m_announcing.setSingleShot(true);
    m_announcing.setInterval(200ms);
    connect(&m_announcing, &QTimer::timeout, this, &KelServer::dvarListChanged);
}

KelServer::~KelServer()
{
    m_exchange.setCameLate({});
}

KelServer *KelServer::sharedKelServer()
{
    return SharedInstance<KelServer>::latest();
}

void KelServer::disconnect()
{
    ++m_cancellations;
    setConnected(false);
    forgetPassword();
}

void KelServer::forgetPassword()
{
    if (m_dvars.remove(QStringLiteral("rcon_password")) > 0)
        emit dvarListChanged(); // whoever has a copy lets go of it
}

void KelServer::forgetVariables()
{
    forgetPassword();
    m_dvars.clear();
    m_awaited.clear();
    emit dvarListChanged();
}

void KelServer::cancelExchange()
{
    ++m_cancellations;
    m_exchange.cancel();
    if (m_hostLookup != nullptr)
        m_hostLookup->cancel();
}

void KelServer::setConnected(bool isConnected)
{
    ++m_connection;
    if (isConnected)
        m_link.open();
    else
        m_link.close();
    if (std::exchange(m_isConnected, isConnected) != isConnected)
        emit isConnectedChanged(isConnected);
}

QString KelServer::serverKey() const
{
    return QStringLiteral("%1:%2").arg(m_host.toLower()).arg(m_port);
}

QString KelServer::rconPassword() const
{
    return m_dvars.value(QStringLiteral("rcon_password"));
}

Request KelServer::requestFor(const QString &command, const QString &password) const
{
    Request request{m_host, m_port, password, command};
    request.address = m_address;
    return request;
}

QCoro::Task<Reply> KelServer::send(Request request, Arrived arrived)
{
    const QString refusal = reasonOfRefusal(request);
    if (!refusal.isEmpty())
        co_return Reply{RConResultError, refusal, false, true};
    const quint64 connection = m_connection;
    const auto sentAt = std::chrono::steady_clock::now();
    if (!request.isBackground && ++m_exchangesUnderWay == 1)
        emit exchangeUnderWayChanged(true);
    m_link.noteSent();
    Reply reply = co_await m_exchange.send(request, arrived);
    if (!request.isBackground && --m_exchangesUnderWay == 0)
        emit exchangeUnderWayChanged(false);
    if (connection == m_connection)
        m_link.noteReply(request, reply, sentAt);
    co_return reply;
}

QCoro::Task<Reply> KelServer::ask(QString command, QString password)
{
    const Request request = requestFor(command, password);
    const Reply reply = co_await send(request);
    co_return reply;
}

QCoro::Task<Reply> KelServer::sendCommand(QString command, Arrived arrived)
{
    if (!m_isConnected)
        co_return notConnected();
    if (!writesPassword(command))
        command = GameText::of(command).text();
    echo(command);
    const Request request = requestFor(command, rconPassword());
    const Arrived show = [this, arrived](const QString &text) {
        appendConsoleMessage(text);
        if (arrived)
            arrived(text);
    };
    const Reply reply = co_await send(request, show);
    if (!reply.isCancelled)
        appendEnd(reply);
    co_return reply;
}

void KelServer::appendEnd(const Reply &reply)
{
    if (!reply.isSuccess()) // the text that came with it has been shown
        appendConsoleMessage(reply.text.endsWith(QLatin1Char('\n')) ? reply.text : reply.text + QLatin1Char('\n'));
    for (const QString &mark : marksOf(reply))
        appendConsoleNote(mark);
}

QCoro::Task<Reply> KelServer::setDvar(QString name, QString value)
{
    const Reply reply = co_await writeDvar(name, value, false);
    co_return reply;
}

QCoro::Task<Reply> KelServer::quickSetDvar(QString name, QString value)
{
    if (!m_isConnected)
        co_return notConnected();
    Reply reply = co_await writeDvar(name, value, true);
    reply.text.clear();
    co_return reply;
}

QCoro::Task<Reply> KelServer::writeDvar(QString name, QString value, bool isSingle)
{
    if (!m_isConnected)
        co_return notConnected();
    value = withoutOuterQuotes(value);
    if (!holdsPassword(name))
        value = GameText::of(value).text();
    const QString command = QStringLiteral("setadmindvar %1 \"%2\"").arg(name, value);
    echo(command);
    Request request = requestFor(command, rconPassword());
    request.isSingle = isSingle;
    const Arrived show = [this](const QString &text) {
        appendConsoleMessage(text);
    };
    const Reply reply = co_await send(request, show);
    if (reply.isCancelled)
        co_return reply;
    if (reply.isSuccess())
        appendConsoleMessage(QStringLiteral("\n"));
    appendEnd(reply);
    if (reply.isSuccess() && !m_dvars.contains(name))
        emit unknownDvarWritten(name);
    if (!reply.isSuccess() || !m_dvars.contains(name))
        co_return reply;
    m_dvars.insert(name, value);
    emit dvarListChanged();
    if (name == QLatin1String("rcon_password") && m_passwordTextBox)
        m_passwordTextBox(value);
    co_return reply;
}

QCoro::Task<> KelServer::updateDvarFromServer(QString name)
{
    m_dvars.remove(name);
    // Asking for rcon_password itself goes out without a valid one: its entry has just gone.
    const QString password = rconPassword();
    co_await verifyDvar(name, password);
    emit dvarListChanged();
}

QCoro::Task<Reply> KelServer::consoleInputDidChange(QString text)
{
    if (!writesPassword(text))
        text = GameText::ofTypedLine(text).text();
    const Reply reply = co_await sendCommand(text);
    static const QString playlistSwitch = QStringLiteral("playlist_enabled ");
    if (reply.isCancelled || reply.isRefused || !startsWithString(text, playlistSwitch))
        co_return reply;
    const QString value = text.mid(playlistSwitch.size());
    m_dvars.insert(QStringLiteral("playlist_enabled"), value);
    m_playlistsActive = value == QLatin1String("1");
    emit dvarListChanged();
    setupTabsForPlaylistsAndRanked();
    emit lastTabRequested();
    co_return reply;
}

void KelServer::echo(const QString &command)
{
    addToCommandHistory(command);
    const QString lineBreak = m_isLineOpen ? QStringLiteral("\n") : QString();
    appendConsoleMessage(lineBreak + QStringLiteral("] ") + command + QLatin1Char('\n'));
}

void KelServer::appendConsoleMessage(const QString &text)
{
    if (!text.isEmpty())
        m_isLineOpen = !text.endsWith(QLatin1Char('\n'));
    emit consoleMessageAppended(text);
}

void KelServer::appendConsoleNote(const QString &note)
{
    m_isLineOpen = false;
    emit consoleNoteAppended(note);
}

void KelServer::addToCommandHistory(const QString &command)
{
    m_commandHistory.append(command);
    ++m_commandHistoryCursor;
    emit commandHistoryChanged();
}

void KelServer::clearCommandHistory()
{
    m_commandHistory.clear();
    m_commandHistoryCursor = 0;
    emit commandHistoryChanged();
}

void KelServer::setupTabsForPlaylistsAndRanked()
{
    TabSet wanted = TabSet::Ranked;
    if (!m_isRanked)
        wanted = m_playlistsActive ? TabSet::UnrankedPlaylists : TabSet::UnrankedMaps;
    if (std::exchange(m_tabSet, wanted) != wanted)
        emit tabSetChanged();
}
