#include "Fuzzing.h"

#include "Number.h"
#include "PlayerList.h"
#include "SortKeys.h"

static QString lineOf(const PlayerRow &player)
{
    return QStringList({player.identifier, player.score, player.ping, player.guid, player.name, player.team, "50",
                        player.ipaddress, "1", "25000"})
        .join(u' ');
}

static bool isWord(const QString &text)
{
    return !text.isEmpty() && !text.contains(u' ') && !text.contains(u'\t') && !text.contains(u'\n');
}

static void checkPlayer(const PlayerRow &player)
{
    const std::optional<qint64> number = parseNumber(player.identifier);
    require(number && QString::number(*number) == player.identifier, "an identifier is a plain number");
    require(isWord(player.guid) && isWord(player.ipaddress) && isWord(player.team) && isWord(player.score) &&
                isWord(player.ping),
            "fields are words");
    require(!player.name.isEmpty() && player.name != "democlient", "the recording client is no player");
    const QVariant address = addressSortKey(player.ipaddress);
    if (address.typeId() == QMetaType::LongLong)
        require(address.toLongLong() >= 0 && address.toLongLong() >> 48 == 0, "an address and a port have 48 bits");
    else
        require(address.toString() == player.ipaddress, "what is no address sorts as a text");
}

static void fuzz(const QByteArray &bytes)
{
    const QString reply = QString::fromLatin1(bytes);
    const QList<PlayerRow> players = parsePlayerList(reply).players;
    require(players.size() <= reply.count(u'\n') + 1, "a line is one player");
    QStringList lines;
    for (const PlayerRow &player : players) {
        checkPlayer(player);
        lines.append(lineOf(player));
    }
    require(parsePlayerList(lines.join(u'\n')).players == players, "players are read again");
}
