#include "KelServer.h"

#include "QuotedStrings.h"
#include "Secrets.h"

#include <utility>

static Reply notConnected()
{
    return Reply{RConResultError, KelServer::tr("Not connected to a game server."), false};
}

KelServer::KelServer(Exchange &exchange, Alerts &alerts, QObject *parent)
    : QObject(parent), m_exchange(exchange), m_alerts(alerts)
{
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
    addToCommandHistory(command);
    appendConsoleMessage(QStringLiteral("] %1\n").arg(command));
    const Reply reply = co_await ask(command, rconPassword());
    if (!reply.isCancelled)
        appendConsoleMessage(reply.text);
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
    const QString command = QStringLiteral("setadmindvar %1 \"%2\"").arg(name, withoutOuterQuotes(value));
    addToCommandHistory(command);
    appendConsoleMessage(QStringLiteral("] %1\n").arg(command));
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

QCoro::Task<> KelServer::consoleInputDidChange(QString text)
{
    const Reply reply = co_await sendCommand(text);
    if (reply.isCancelled)
        co_return;
    static const QString playlistSwitch = QStringLiteral("playlist_enabled ");
    if (!startsWithString(text, playlistSwitch))
        co_return;
    const QString value = text.mid(playlistSwitch.size());
    m_dvars.insert(QStringLiteral("playlist_enabled"), value);
    m_playlistsActive = value == QLatin1String("1");
    emit dvarListChanged();
    setupTabsForPlaylistsAndRanked();
    emit lastTabRequested();
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
