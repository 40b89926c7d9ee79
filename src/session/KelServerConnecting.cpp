#include "KelServer.h"

#include "Alerts.h"
#include "CatalogueLoader.h"
#include "DvarReplies.h"
#include "HostLookup.h"
#include "Number.h"
#include "QuotedStrings.h"

#include <limits>

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

static std::optional<int> parsePort(const QString &text)
{
    const std::optional<qint64> number = parseNumber(text);
    if (!number || *number < 1 || *number > std::numeric_limits<quint16>::max())
        return std::nullopt;
    return static_cast<int>(*number);
}

QCoro::Task<> KelServer::connectToHost(QString host, QString portText, QString password)
{
    const quint64 cancellations = m_cancellations;
    forgetVariables();
    clearCommandHistory();
    emit consoleCleared();
    m_exchange.startOver();

    const std::optional<int> newPort = parsePort(portText);
    if (!newPort) {
        const QString text = tr("The value entered '%1' is invalid").arg(portText);
        co_await failConnecting(tr("Invalid Port"), text);
        co_return;
    }
    const HostAddresses found = co_await lookUp(host);
    if (found.isCancelled || cancellations != m_cancellations)
        co_return;
    if (found.addresses.isEmpty()) {
        co_await failConnecting(tr("Command Send Error"), found.error);
        co_return;
    }
    Request request{host, *newPort, password, QStringLiteral("dvardump")};
    Reply reply;
    for (const QString &address : found.addresses) { // never at once: the password goes along
        request.address = address;
        reply = co_await send(request);
        const bool isAnswered = reply.result != RConResultTimeout && reply.result != RConResultError;
        if (reply.isCancelled || isAnswered || cancellations != m_cancellations)
            break;
    }
    if (reply.isCancelled || cancellations != m_cancellations)
        co_return;
    if (reply.result == RConResultInvalidPassword)
        emit passwordRefused();
    if (!reply.isSuccess()) {
        co_await failConnecting(tr("Command Send Error"), reply.text);
        co_return;
    }
    m_host = host;
    m_port = *newPort;
    m_address = request.address;
    setConnected(true);
    emit connectionBegan();
    takeDump(reply.text);
    if (reply.mayBeIncomplete)
        co_await dumpOnceMore(password);
    if (cancellations != m_cancellations)
        co_return;

    const bool areAllThere = co_await fetchRequiredDvars(password);
    if (cancellations != m_cancellations)
        co_return;
    if (!areAllThere) {
        const QString text = tr("Unable to fine all required dvars!\n\n- The server is not communicating properly.");
        co_await failConnecting(tr("Server Communication Error"), text);
        co_return;
    }
    readMode();
    emit dvarListChanged();
    setupTabsForPlaylistsAndRanked();
    if (m_catalogueLoader != nullptr)
        co_await followCatalogues();
    if (cancellations == m_cancellations)
        emit didConnect();
}

QCoro::Task<HostAddresses> KelServer::lookUp(QString host)
{
    HostAddresses found{{host}, {}, false};
    if (m_hostLookup != nullptr) {
        const quint64 cancellations = m_cancellations;
        emit lookUpBegan(host);
        found = co_await m_hostLookup->find(host);
        if (!found.isCancelled && cancellations == m_cancellations)
            emit lookUpEnded();
    }
    co_return found;
}

/// A part was lost, or the server counts in a way of its own: it is asked again once, and never for that any more.
QCoro::Task<> KelServer::dumpOnceMore(QString password)
{
    if (m_dumpedTwice.contains(serverKey()))
        co_return;
    m_dumpedTwice.insert(serverKey());
    const quint64 cancellations = m_cancellations;
    Reply reply = co_await ask(QStringLiteral("dvardump"), password);
    if (!reply.isCancelled && reply.isSuccess() && cancellations == m_cancellations)
        takeDump(reply.text);
}

QCoro::Task<> KelServer::followCatalogues()
{
    const quint64 cancellations = m_cancellations;
    co_await m_catalogueLoader->loadCatalogues();
    if (cancellations != m_cancellations)
        co_return;
    co_await m_catalogueLoader->updateControls();
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

QCoro::Task<> KelServer::failConnecting(QString title, QString text)
{
    co_await m_alerts.run(title, text);
    setConnectFailed();
}

QCoro::Task<bool> KelServer::fetchRequiredDvars(QString password)
{
    const quint64 cancellations = m_cancellations;
    bool areAllThere = true;
    for (const QString &name : requiredDvars()) {
        if (m_dvars.contains(name))
            continue;
        const bool isStored = co_await verifyDvar(name, password);
        if (cancellations != m_cancellations)
            co_return false;
        areAllThere = areAllThere && isStored;
    }
    co_return areAllThere;
}

void KelServer::readMode()
{
    const auto ranked = m_dvars.constFind(QStringLiteral("sv_ranked"));
    m_isRanked = ranked == m_dvars.constEnd() || *ranked == QLatin1String("2") || *ranked == QLatin1String("4");
    m_playlistsActive = m_dvars.value(QStringLiteral("playlist_enabled")) == QLatin1String("1");
}

void KelServer::takeDump(const QString &dump)
{
    for (const QStringView line : QStringView(dump).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        addDvarLine(line);
}

void KelServer::addDvarLine(QStringView line)
{
    const auto dvar = dumpedDvar(line);
    if (dvar && (m_dvars.size() < mostDumpedDvars || m_dvars.contains(dvar->first)))
        m_dvars.insert(dvar->first, dvar->second);
}

QCoro::Task<bool> KelServer::verifyDvar(QString name, QString password)
{
    if (m_dvars.contains(name))
        co_return false;
    const quint64 cancellations = m_cancellations;
    const Reply reply = co_await ask(name, password);
    if (reply.isCancelled || cancellations != m_cancellations)
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
    if (!value)
        co_return false;
    m_dvars.insert(name, *value);
    co_return true;
}

QCoro::Task<KelServer::Fetched> KelServer::fetchDvar(QString name)
{
    const quint64 connection = m_connection;
    Request request = requestFor(name, rconPassword());
    request.isBackground = true;
    const Reply reply = co_await send(request);
    if (reply.isCancelled || connection != m_connection)
        co_return Fetched::CalledOff;
    if (reply.result == RConResultInvalidPassword)
        co_return Fetched::Refused;
    if (!reply.isSuccess())
        co_return Fetched::NoAnswer;
    const std::optional<QString> value = toldValue(reply.text);
    setAwaited(name, false);
    if (!value) {
        // It may have known the variable before it restarted. Without those that every server has there is no session.
        if (isUnknownDvar(reply.text) && !requiredDvars().contains(name))
            m_dvars.remove(name);
        co_return Fetched::Unknown;
    }
    const bool isNew = !m_dvars.contains(name);
    m_dvars.insert(name, *value);
    if (isNew)
        emit dvarFetched(name);
    announceDvars();
    co_return Fetched::Known;
}

void KelServer::setAwaited(const QString &name, bool isAwaited)
{
    if (isAwaited)
        m_awaited.insert(name);
    else
        m_awaited.remove(name);
    announceDvars();
}

void KelServer::forgetAwaited()
{
    m_awaited.clear();
    announceDvars();
}

QCoro::Task<> KelServer::probe()
{
    Request request = requestFor(QStringLiteral("sv_hostname"), rconPassword());
    request.isBackground = true;
    request.isProbe = true;
    const Reply reply = co_await send(request);
    Q_UNUSED(reply)
}

QCoro::Task<> KelServer::probePatiently()
{
    const Request request = requestFor(QStringLiteral("sv_hostname"), rconPassword());
    const Reply reply = co_await send(request);
    Q_UNUSED(reply)
}

QCoro::Task<> KelServer::lookUpAgain()
{
    const quint64 connection = m_connection;
    if (m_hostLookup == nullptr)
        co_return;
    const HostAddresses found = co_await m_hostLookup->find(m_host);
    if (connection == m_connection && !found.addresses.isEmpty() && !found.addresses.contains(m_address))
        m_address = found.addresses.first();
}

/// Gathered: with each value that comes, every table that shows some looks all of them up.
void KelServer::announceDvars()
{
    if (!m_announcing.isActive())
        m_announcing.start();
}

QCoro::Task<std::optional<DvarTable>> KelServer::dumpDvars()
{
    const quint64 connection = m_connection;
    std::optional<DvarTable> dumped;
    Reply reply = co_await ask(QStringLiteral("dvardump"), rconPassword());
    if (reply.isCancelled || connection != m_connection || !reply.isSuccess())
        co_return dumped;
    dumped.emplace();
    for (const QStringView line : QStringView(reply.text).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (const auto dvar = dumpedDvar(line); dvar && dumped->size() < mostDumpedDvars)
            dumped->insert(dvar->first, dvar->second);
    }
    co_return dumped;
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

QCoro::Task<> KelServer::followMode()
{
    const TabSet before = m_tabSet;
    readMode();
    setupTabsForPlaylistsAndRanked();
    if (m_catalogueLoader != nullptr && before != m_tabSet)
        co_await followCatalogues();
}

void KelServer::setPassword(const QString &password)
{
    m_dvars.insert(QStringLiteral("rcon_password"), password);
    emit dvarListChanged();
}
