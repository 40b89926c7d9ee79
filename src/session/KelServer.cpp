#include "KelServer.h"

#include "GameText.h"
#include "QuotedStrings.h"
#include "Secrets.h"

#include <utility>

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

KelServer::KelServer(Exchange &exchange, Alerts &alerts, QObject *parent)
    : QObject(parent), m_exchange(exchange), m_alerts(alerts)
{
    connect(this, &KelServer::consoleCleared, this, [this] { m_isLineOpen = false; });
}

KelServer::~KelServer()
{
    wipe(m_dvars[QStringLiteral("rcon_password")]);
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
    QString password = m_dvars.take(QStringLiteral("rcon_password"));
    if (password.isNull())
        return;
    emit dvarListChanged(); // whoever has a copy lets go of it
    wipe(password);
}

void KelServer::forgetVariables()
{
    forgetPassword();
    m_dvars.clear();
    emit dvarListChanged();
}

void KelServer::cancelExchange()
{
    ++m_cancellations;
    m_exchange.cancel();
}

void KelServer::setConnected(bool isConnected)
{
    if (m_isConnected == isConnected)
        return;
    m_isConnected = isConnected;
    emit isConnectedChanged(isConnected);
}

QString KelServer::rconPassword() const
{
    return m_dvars.value(QStringLiteral("rcon_password"));
}

QCoro::Task<Reply> KelServer::send(Request request)
{
    const QString refusal = reasonOfRefusal(request);
    if (!refusal.isEmpty())
        co_return Reply{RConResultError, refusal, false, true};
    if (++m_exchangesUnderWay == 1)
        emit exchangeUnderWayChanged(true);
    Reply reply = co_await m_exchange.send(request);
    if (--m_exchangesUnderWay == 0)
        emit exchangeUnderWayChanged(false);
    co_return reply;
}

QCoro::Task<Reply> KelServer::ask(QString command, QString password)
{
    const Request request{m_host, m_port, password, command, false};
    const Reply reply = co_await send(request);
    co_return reply;
}

QCoro::Task<Reply> KelServer::sendCommand(QString command)
{
    if (!m_isConnected)
        co_return notConnected();
    if (!writesPassword(command))
        command = GameText::of(command).text();
    echo(command);
    const Reply reply = co_await ask(command, rconPassword());
    if (reply.isCancelled)
        co_return reply;
    const bool isLineMissing = !reply.isSuccess() && !reply.text.endsWith(QLatin1Char('\n'));
    appendConsoleMessage(isLineMissing ? reply.text + QLatin1Char('\n') : reply.text);
    co_return reply;
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
    const Request request{m_host, m_port, rconPassword(), command, isSingle};
    const Reply reply = co_await send(request);
    if (reply.isCancelled)
        co_return reply;
    appendConsoleMessage(reply.text + QLatin1Char('\n'));
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
