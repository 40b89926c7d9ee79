#include "KelServer.h"

#include "Alerts.h"
#include "CatalogueLoader.h"
#include "Number.h"
#include "QuotedStrings.h"
#include "Secrets.h"

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

static constexpr qsizetype fieldsOfReply = 3; // name, value, value in force

/// The quoted fields of a reply to a variable's name. The network may have doubled it, and a server that is slow
/// answers a repeated request as well: the same fields again are the same reply.
static QStringList fieldsOfOne(const QString &reply)
{
    QStringList fields = quotedStrings(reply);
    while (fields.size() > fieldsOfReply && fields.last(fieldsOfReply) == fields.first(fieldsOfReply))
        fields.resize(fields.size() - fieldsOfReply);
    return fields;
}

QCoro::Task<> KelServer::connectToHost(QString host, QString portText, QString password)
{
    const quint64 cancellations = m_cancellations;
    forgetVariables();
    clearCommandHistory();
    emit consoleCleared();

    const std::optional<int> newPort = parsePort(portText);
    if (!newPort) {
        const QString text = tr("The value entered '%1' is invalid").arg(portText);
        co_await failConnecting(tr("Invalid Port"), text);
        co_return;
    }
    const Request request{host, *newPort, password, QStringLiteral("dvardump"), false};
    Reply reply = co_await send(request);
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
    setConnected(true);
    emit connectionBegan();
    for (const QStringView line : QStringView(reply.text).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        addDvarLine(line);
    wipe(reply.text); // the password is among the variables

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
        co_await followCatalogues(password);
    if (cancellations == m_cancellations)
        emit didConnect();
}

QCoro::Task<> KelServer::followCatalogues(QString password)
{
    const quint64 cancellations = m_cancellations;
    co_await m_catalogueLoader->loadCatalogues();
    if (cancellations != m_cancellations)
        co_return;
    co_await fetchCataloguedDvars(password);
    if (cancellations != m_cancellations)
        co_return;
    co_await m_catalogueLoader->updateControls();
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

QCoro::Task<> KelServer::fetchCataloguedDvars(QString password)
{
    const quint64 cancellations = m_cancellations;
    QStringList names = m_catalogueLoader->settingDvars();
    if (!m_isRanked)
        names += m_catalogueLoader->gametypeDvars();
    const int total = static_cast<int>(names.size());
    int done = 0;
    for (const QString &name : std::as_const(names)) {
        co_await verifyDvar(name, password);
        if (cancellations != m_cancellations)
            co_return;
        emit connectProgressed(++done, total);
    }
    emit dvarListChanged();
}

void KelServer::readMode()
{
    const auto ranked = m_dvars.constFind(QStringLiteral("sv_ranked"));
    m_isRanked = ranked == m_dvars.constEnd() || *ranked == QLatin1String("2") || *ranked == QLatin1String("4");
    m_playlistsActive = m_dvars.value(QStringLiteral("playlist_enabled")) == QLatin1String("1");
}

void KelServer::addDvarLine(QStringView line)
{
    const QChar quote = QLatin1Char('"');
    const qsizetype opening = line.indexOf(quote);
    const qsizetype closing = opening < 0 ? -1 : line.indexOf(quote, opening + 1);
    if (closing < 0)
        return;
    const QStringView value = line.sliced(opening + 1, closing - opening - 1);
    qsizetype end = opening;
    while (end > 0 && line.at(end - 1) == QLatin1Char(' '))
        --end;
    qsizetype begin = end;
    while (begin > 0 && line.at(begin - 1) != QLatin1Char(' '))
        --begin;
    // An empty value stays out of the catalogue, so that it can be asked for by name.
    if (begin == end || value.isEmpty())
        return;
    const QString name = line.sliced(begin, end - begin).toString();
    if (m_dvars.size() < mostDumpedDvars || m_dvars.contains(name))
        m_dvars.insert(name, value.toString());
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
    if (startsWithString(reply.text, QStringLiteral("Unknown command"))) {
        const QString text = tr("The dvar '%1' was not recognized by the server").arg(name);
        co_await m_alerts.run(tr("Unknown dvar"), text);
        co_return false;
    }
    const QStringList fields = fieldsOfOne(reply.text);
    if (fields.size() != fieldsOfReply)
        co_return false;
    const QString &value = fields.at(2);
    m_dvars.insert(name, value.mid(1, value.size() - 2));
    co_return true;
}
