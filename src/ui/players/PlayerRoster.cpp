#include "PlayerRoster.h"

#include "KelServer.h"
#include "PlayerColumns.h"

#include <QHash>

#include <algorithm>
#include <utility>

PlayerRoster::PlayerRoster(KelServer &server, Clock clock, QObject *parent)
    : QObject(parent), m_server(server), m_clock(std::move(clock)), m_rows(playerTableColumns(), playerKey)
{
    // Merging a long list at every datagram would hold up the window; nobody sees more than a frame shows.
    m_showingPart.setSingleShot(true);
    m_showingPart.setInterval(std::chrono::milliseconds(16));
    connect(&m_showingPart, &QTimer::timeout, this, &PlayerRoster::takePart);
}

static QList<PlayerRow> withKeyOf(const PlayerRow &player, const QList<PlayerRow> &players)
{
    QList<PlayerRow> found;
    const QString key = playerKey(player);
    std::copy_if(players.begin(), players.end(), std::back_inserter(found),
                 [&key](const PlayerRow &other) { return playerKey(other) == key; });
    return found;
}

QList<ChosenPlayer> PlayerRoster::selected() const
{
    QList<ChosenPlayer> chosen;
    const QList<PlayerRow> shown = m_rows.shownObjects();
    for (const PlayerRow &player : m_rows.selectedObjects())
        chosen.append({player, withKeyOf(player, players()).size() > 1, !shown.contains(player)});
    return chosen;
}

QCoro::Task<PlayerRoster::Fetch> PlayerRoster::fetch()
{
    const auto askedAt = m_clock();
    const QString line = QStringLiteral("teamstatus");
    m_part.clear();
    const Arrived show = [this](const QString &text) {
        m_part += text;
        if (!m_showingPart.isActive())
            m_showingPart.start();
    };
    const Reply reply = co_await m_server.sendCommand(line, show);
    m_showingPart.stop();
    if (reply.isCancelled)
        co_return Fetch{Fetch::CalledOff, {}};
    if (!reply.isSuccess())
        co_return Fetch{Fetch::Failed, reply.text};
    if (!m_server.isConnected())
        co_return Fetch{Fetch::CalledOff, {}};
    const PlayerList list = parsePlayerList(reply.text);
    m_mayBeIncomplete = reply.mayBeIncomplete || list.isDamaged || (m_isTitleDue && !list.isTitled);
    m_isTitleDue = m_isTitleDue || list.isTitled;
    if (!m_mayBeIncomplete) {
        m_askedAt = askedAt;
        m_isOutdated = false;
    }
    take(list);
    co_return Fetch{m_mayBeIncomplete ? Fetch::MaybeIncomplete : Fetch::Whole, {}};
}

void PlayerRoster::take(const PlayerList &list)
{
    m_isFetched = true;
    m_rows.mergeContent(m_mayBeIncomplete ? withUnlisted(list) : list.players);
    emit changed();
}

/// Rows come with their datagrams. Nobody goes before the end: he may be in the part that is still to come.
void PlayerRoster::takePart()
{
    const PlayerList list = parsePlayerList(m_part.left(m_part.lastIndexOf(QLatin1Char('\n')) + 1));
    if (list.isDamaged || (m_isTitleDue && !list.isTitled) || !m_server.isConnected())
        return;
    m_rows.mergeContent(withUnlisted(list));
    emit changed();
}

QList<PlayerRow> PlayerRoster::withUnlisted(const PlayerList &list) const
{
    QList<PlayerRow> rows = list.players;
    QHash<QString, int> listed;
    for (const PlayerRow &player : list.players)
        ++listed[playerKey(player)];
    for (const PlayerRow &player : players()) {
        if (--listed[playerKey(player)] < 0)
            rows.append(player);
    }
    return rows;
}

void PlayerRoster::forget()
{
    m_askedAt.reset();
    m_isFetched = false;
    m_isTitleDue = false;
    m_mayBeIncomplete = false;
    m_isOutdated = false;
    m_rows.mergeContent({});
    emit changed();
}

std::optional<std::chrono::seconds> PlayerRoster::age() const
{
    if (!m_askedAt)
        return std::nullopt;
    return std::chrono::floor<std::chrono::seconds>(m_clock() - *m_askedAt);
}

bool PlayerRoster::isNew() const
{
    return m_askedAt && !m_mayBeIncomplete && !m_isOutdated && m_clock() - *m_askedAt <= newFor;
}

std::optional<PlayerRow> PlayerRoster::find(const ChosenPlayer &chosen, QString *whyNot) const
{
    const QList<PlayerRow> present = withKeyOf(chosen.row, players());
    if (present.isEmpty()) {
        *whyNot = tr("is not in the list any more");
        return std::nullopt;
    }
    if (present.size() == 1 && !chosen.hadDouble)
        return present.first();
    const auto same = std::find_if(present.begin(), present.end(), [&chosen](const PlayerRow &player) {
        return player.identifier == chosen.row.identifier;
    });
    if (same != present.end())
        return *same;
    *whyNot = tr("cannot be told from another player of this name and address");
    return std::nullopt;
}
