#include "KelServer.h"

#include "Alerts.h"
#include "CatalogueLoader.h"
#include "GameText.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "Secrets.h"

#include <limits>
#include <utility>

static const QStringList &requiredDvars()
{
    static const QStringList names{QStringLiteral("rcon_password"),
                                   QStringLiteral("sv_hostname"),
                                   QStringLiteral("sv_ranked"),
                                   QStringLiteral("playlist_enabled"),
                                   QStringLiteral("playlist_excludeMap"),
                                   QStringLiteral("playlist_excludeGametype"),
                                   QStringLiteral("playlist_excludeGametypeMap")};
    return names;
}

static Reply notConnected()
{
    return Reply{RConResultError, KelServer::tr("Not connected to a game server."), false};
}

static std::optional<int> parsePort(const QString &text)
{
    const std::optional<qint64> number = parseNumber(text);
    if (!number || *number < 1 || *number > std::numeric_limits<quint16>::max())
        return std::nullopt;
    return static_cast<int>(*number);
}

KelServer::KelServer(Exchange &exchange, Alerts &alerts, QObject *parent)
    : QObject(parent), m_exchange(exchange), m_alerts(alerts), m_link(exchange)
{
    m_exchange.setCameLate([this](const QString &command, const QString &text) {
        m_console.appendConsoleNote(tr("came late, to “%1”").arg(command));
        m_console.appendConsoleMessage(text);
    });
}

KelServer::~KelServer()
{
    m_exchange.setCameLate({});
}

KelServer *KelServer::sharedKelServer()
{
    return SharedInstance<KelServer>::latest();
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

// Connecting

QCoro::Task<> KelServer::connectToHost(QString host, QString portText, QString password)
{
    forgetVariables();
    m_console.clearCommandHistory();
    m_console.clearTranscript();
    m_exchange.startOver();

    const std::optional<int> newPort = parsePort(portText);
    if (!newPort) {
        const QString text = tr("The value entered '%1' is invalid").arg(portText);
        co_await failConnecting(tr("Invalid Port"), text);
        co_return;
    }
    std::optional<Reply> dump = co_await reach(host, *newPort, password);
    if (!dump)
        co_return;
    setConnected(true);
    const quint64 connection = m_link.connection();
    emit connectionBegan();
    takeDump(dump->text, &m_dvars);
    if (dump->mayBeIncomplete)
        co_await dumpOnceMore(password);
    bool areAllThere = false;
    if (connection == m_link.connection())
        areAllThere = co_await fetchRequiredDvars(password);
    if (connection != m_link.connection())
        co_return;
    if (!areAllThere) {
        const QString text = tr("Unable to fine all required dvars!\n\n- The server is not communicating properly.");
        co_await failConnecting(tr("Server Communication Error"), text);
        co_return;
    }
    readMode();
    emit dvarListChanged();
    setupTabsForPlaylistsAndRanked();
    co_await followCatalogues();
    if (connection == m_link.connection())
        emit didConnect();
}

QCoro::Task<std::optional<Reply>> KelServer::reach(QString host, int port, QString password)
{
    const quint64 connection = m_link.connection();
    std::optional<Reply> dump;
    const HostAddresses found = co_await lookUp(host);
    if (found.isCancelled || connection != m_link.connection())
        co_return dump;
    if (found.addresses.isEmpty()) {
        co_await failConnecting(tr("Command Send Error"), found.error);
        co_return dump;
    }
    Request request{host, port, password, QStringLiteral("dvardump")};
    Reply reply;
    for (const QString &address : found.addresses) { // never at once: the password goes along
        request.address = address;
        reply = co_await m_link.send(request);
        if (reply.isCancelled || connection != m_link.connection())
            co_return dump;
        if (reply.result != RConResultTimeout && reply.result != RConResultError)
            break;
    }
    if (reply.result == RConResultInvalidPassword)
        emit passwordRefused();
    if (!reply.isSuccess()) {
        co_await failConnecting(tr("Command Send Error"), reply.text);
        co_return dump;
    }
    m_host = host;
    m_port = port;
    m_address = request.address;
    dump = std::move(reply);
    co_return dump;
}

QCoro::Task<HostAddresses> KelServer::lookUp(QString host)
{
    HostAddresses found{{host}, {}, false};
    if (m_hostLookup != nullptr) {
        const quint64 connection = m_link.connection();
        emit lookUpBegan(host);
        found = co_await m_hostLookup->find(host);
        if (!found.isCancelled && connection == m_link.connection())
            emit lookUpEnded();
    }
    co_return found;
}

QCoro::Task<> KelServer::lookUpAgain()
{
    const quint64 connection = m_link.connection();
    if (m_hostLookup == nullptr)
        co_return;
    const HostAddresses found = co_await m_hostLookup->find(m_host);
    if (connection == m_link.connection() && !found.addresses.isEmpty() && !found.addresses.contains(m_address))
        m_address = found.addresses.first();
}

/// A part was lost, or the server counts in a way of its own: it is asked again once, and never for that any more.
QCoro::Task<> KelServer::dumpOnceMore(QString password)
{
    if (m_dumpedTwice.contains(serverKey()))
        co_return;
    m_dumpedTwice.insert(serverKey());
    const quint64 connection = m_link.connection();
    const Request request = requestFor(QStringLiteral("dvardump"), password);
    Reply reply = co_await m_link.send(request);
    if (reply.isSuccess() && connection == m_link.connection())
        takeDump(reply.text, &m_dvars);
}

QCoro::Task<bool> KelServer::fetchRequiredDvars(QString password)
{
    const quint64 connection = m_link.connection();
    bool areAllThere = true;
    for (const QString &name : requiredDvars()) {
        if (m_dvars.contains(name))
            continue;
        const bool isStored = co_await verifyDvar(name, password);
        if (connection != m_link.connection())
            co_return false;
        areAllThere = areAllThere && isStored;
    }
    co_return areAllThere;
}

QCoro::Task<> KelServer::followCatalogues()
{
    const quint64 connection = m_link.connection();
    if (m_catalogueLoader == nullptr)
        co_return;
    co_await m_catalogueLoader->loadCatalogues();
    if (connection == m_link.connection())
        co_await m_catalogueLoader->updateControls();
}

QCoro::Task<> KelServer::failConnecting(QString title, QString text)
{
    co_await m_alerts.run(title, text);
    setConnectFailed();
}

void KelServer::disconnect()
{
    setConnected(false);
    forgetPassword();
}

void KelServer::cancelExchange()
{
    m_link.cancel();
    if (m_hostLookup != nullptr)
        m_hostLookup->cancel();
}

void KelServer::setConnected(bool isConnected)
{
    const bool wasConnected = this->isConnected();
    if (isConnected)
        m_link.open();
    else
        m_link.close();
    if (wasConnected != isConnected)
        emit isConnectedChanged(isConnected);
}

// The mode of the server

void KelServer::readMode()
{
    const auto ranked = m_dvars.constFind(QStringLiteral("sv_ranked"));
    m_isRanked = ranked == m_dvars.constEnd() || *ranked == QLatin1String("2") || *ranked == QLatin1String("4");
    m_playlistsActive = m_dvars.value(QStringLiteral("playlist_enabled")) == QLatin1String("1");
}

QCoro::Task<> KelServer::followMode()
{
    const TabSet before = m_tabSet;
    readMode();
    setupTabsForPlaylistsAndRanked();
    if (before != m_tabSet)
        co_await followCatalogues();
}

void KelServer::setupTabsForPlaylistsAndRanked()
{
    TabSet wanted = TabSet::Ranked;
    if (!m_isRanked)
        wanted = m_playlistsActive ? TabSet::UnrankedPlaylists : TabSet::UnrankedMaps;
    if (std::exchange(m_tabSet, wanted) != wanted)
        emit tabSetChanged();
}

// Variables

void KelServer::forgetPassword()
{
    if (m_dvars.remove(QStringLiteral("rcon_password")) > 0)
        emit dvarListChanged(); // whoever has a copy lets go of it
}

void KelServer::forgetVariables()
{
    forgetPassword();
    m_dvars.clear();
    emit dvarListChanged();
}

void KelServer::setPassword(const QString &password)
{
    takeDvar(QStringLiteral("rcon_password"), password);
}

void KelServer::takeDvar(const QString &name, const QString &value)
{
    m_dvars.insert(name, value);
    emit dvarChanged(name);
}

void KelServer::dropDvar(const QString &name)
{
    if (!requiredDvars().contains(name) && m_dvars.remove(name) > 0)
        emit dvarChanged(name);
}

QStringList KelServer::takeDvars(const DvarTable &dumped)
{
    const QStringList catalogued = cataloguedDvars();
    QStringList different;
    for (auto each = dumped.cbegin(); each != dumped.cend(); ++each) {
        if (m_dvars.value(each.key()) == *each)
            continue;
        if (catalogued.contains(each.key()))
            different.append(each.key());
        m_dvars.insert(each.key(), *each);
    }
    emit dvarListChanged();
    return different;
}

QStringList KelServer::cataloguedDvars() const
{
    if (m_catalogueLoader == nullptr)
        return {};
    QStringList names = m_catalogueLoader->settingDvars();
    if (!m_isRanked)
        names += m_catalogueLoader->gametypeDvars();
    names.removeDuplicates();
    return names;
}

QCoro::Task<bool> KelServer::verifyDvar(QString name, QString password)
{
    if (m_dvars.contains(name))
        co_return false;
    const quint64 connection = m_link.connection();
    const Request request = requestFor(name, password);
    const Reply reply = co_await m_link.send(request);
    if (reply.isCancelled || connection != m_link.connection())
        co_return false;
    if (!reply.isSuccess()) {
        co_await failConnecting(tr("Command Send Error"), reply.text);
        co_return false;
    }
    if (isUnknownDvar(reply.text)) {
        const QString text = tr("The dvar '%1' was not recognized by the server").arg(name);
        co_await m_alerts.run(tr("Unknown dvar"), text);
        co_return false;
    }
    const std::optional<QString> value = toldValue(reply.text);
    if (value)
        m_dvars.insert(name, *value);
    co_return value.has_value();
}

QCoro::Task<> KelServer::updateDvarFromServer(QString name)
{
    m_dvars.remove(name);
    // Asking for rcon_password itself goes out without a valid one: its entry has just gone.
    const QString password = rconPassword();
    co_await verifyDvar(name, password);
    emit dvarChanged(name);
}

// What is sent

QCoro::Task<Reply> KelServer::ask(QString command, Asking asking)
{
    Request request = requestFor(command, rconPassword());
    request.isBackground = asking != Asking::Patiently;
    request.isProbe = asking == Asking::Probing;
    Reply reply = co_await m_link.send(request);
    co_return reply;
}

QCoro::Task<Reply> KelServer::converse(Request request, Arrived arrived)
{
    m_console.echo(request.command);
    const Arrived show = [this, arrived](const QString &text) {
        m_console.appendConsoleMessage(text);
        if (arrived)
            arrived(text);
    };
    const Reply reply = co_await m_link.send(request, show);
    co_return reply;
}

QCoro::Task<Reply> KelServer::sendCommand(QString command, Arrived arrived)
{
    if (!isConnected())
        co_return notConnected();
    if (!Console::writesPassword(command))
        command = GameText::of(command).text();
    const Request request = requestFor(command, rconPassword());
    const Reply reply = co_await converse(request, arrived);
    if (!reply.isCancelled)
        m_console.appendEnd(reply);
    co_return reply;
}

QCoro::Task<Reply> KelServer::setDvar(QString name, QString value)
{
    const Reply reply = co_await writeDvar(name, value, false);
    co_return reply;
}

QCoro::Task<Reply> KelServer::quickSetDvar(QString name, QString value)
{
    Reply reply = co_await writeDvar(name, value, true);
    if (isConnected())
        reply.text.clear();
    co_return reply;
}

QCoro::Task<Reply> KelServer::writeDvar(QString name, QString value, bool isSingle)
{
    if (!isConnected())
        co_return notConnected();
    value = withoutOuterQuotes(value);
    if (!holdsPassword(name))
        value = GameText::of(value).text();
    Request request = requestFor(QStringLiteral("setadmindvar %1 \"%2\"").arg(name, value), rconPassword());
    request.isSingle = isSingle;
    const Reply reply = co_await converse(request);
    if (reply.isCancelled)
        co_return reply;
    if (reply.isSuccess())
        m_console.appendConsoleMessage(QStringLiteral("\n"));
    m_console.appendEnd(reply);
    if (!reply.isSuccess())
        co_return reply;
    emit dvarWritten(name);
    if (!m_dvars.contains(name))
        co_return reply;
    takeDvar(name, value);
    if (name == QLatin1String("rcon_password") && m_passwordTextBox)
        m_passwordTextBox(value);
    co_return reply;
}

QCoro::Task<Reply> KelServer::consoleInputDidChange(QString text)
{
    if (!Console::writesPassword(text))
        text = GameText::ofTypedLine(text).text();
    const Reply reply = co_await sendCommand(text);
    static const QString playlistSwitch = QStringLiteral("playlist_enabled ");
    if (reply.isCancelled || reply.isRefused || !startsWithString(text, playlistSwitch))
        co_return reply;
    const QString value = text.mid(playlistSwitch.size());
    m_playlistsActive = value == QLatin1String("1");
    takeDvar(QStringLiteral("playlist_enabled"), value);
    setupTabsForPlaylistsAndRanked();
    emit lastTabRequested();
    co_return reply;
}
