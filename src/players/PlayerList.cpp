#include "PlayerList.h"

#include "Number.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

static QStringList tokensOf(QStringView line)
{
    return line.toString().replace(u'\t', u' ').split(u' ', Qt::SkipEmptyParts);
}

QString playerKey(const PlayerRow &player)
{
    return player.name + player.ipaddress;
}

namespace
{

/// What the title line of a reply tells about the others. The datagrams of a reply carry no numbers: one that is lost,
/// late or doubled cuts a row off, or joins it to the repeated beginning.
class Titled
{
public:
    explicit Titled(const QList<QStringView> &lines)
        : m_isTitled(std::any_of(lines.begin(), lines.end(), &endsLikeTitle)),
          m_isBeginningLost(m_isTitled && !endsLikeTitle(lines.first()))
    {
    }

    bool isTitled() const { return m_isTitled; }

    /// Every row ends in the numbers that the title names, and none stands before it.
    bool isDamaged(const QStringList &tokens, qsizetype line) const
    {
        if (line == 0 && m_isBeginningLost)
            return true;
        return m_isTitled && !endsLikeRow(tokens);
    }

    /// Whether a line that is no row begins or ends as rows do. A whole row of a player without a name is no piece, or
    /// he could make every list look damaged.
    bool isPieceOfRow(const QStringList &tokens) const
    {
        constexpr qsizetype tokensWithoutName = 9;
        constexpr qsizetype addressWithoutName = 6;
        if (!m_isTitled || tokens.isEmpty())
            return false;
        const bool beginsLikeRow = parseNumber(tokens.first()).has_value();
        const bool isNameless = tokens.size() == tokensWithoutName && beginsLikeRow && endsLikeRow(tokens) &&
                                tokens.at(addressWithoutName).contains(QLatin1Char(':'));
        return (beginsLikeRow || endsLikeRow(tokens)) && !isNameless;
    }

private:
    static bool endsLikeRow(const QStringList &tokens)
    {
        return tokens.size() > 1 && parseNumber(tokens.last()) && parseNumber(tokens.at(tokens.size() - 2));
    }

    /// Most lines are told by their last letters; only then are all the words of one looked at.
    static bool endsLikeTitle(QStringView line)
    {
        if (!line.trimmed().endsWith(QLatin1String("rate")))
            return false;
        const QStringList tokens = tokensOf(line);
        return tokens.endsWith(QStringLiteral("rate")) && tokens.value(tokens.size() - 2) == QLatin1String("qport");
    }

    bool m_isTitled;
    bool m_isBeginningLost;
};

} // namespace

PlayerList parsePlayerList(const QString &reply)
{
    // num score ping guid name… team lastmsg address qport rate
    constexpr qsizetype fewestTokens = 10;
    constexpr qsizetype nameBegin = 4;
    constexpr qsizetype tokensAfterName = 5;
    const QList<QStringView> lines = QStringView(reply).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const Titled titled(lines);
    QHash<QString, qsizetype> places;
    PlayerList list;
    list.isTitled = titled.isTitled();
    QList<PlayerRow> &players = list.players;
    for (qsizetype line = 0; line < lines.size() && players.size() < mostPlayers; ++line) {
        const QStringList tokens = tokensOf(lines.at(line));
        const qsizetype count = tokens.size();
        const std::optional<qint64> number = parseNumber(tokens.value(0));
        if (count < fewestTokens || !number || titled.isDamaged(tokens, line)) {
            list.isDamaged = list.isDamaged || titled.isPieceOfRow(tokens);
            continue;
        }
        const QString name = tokens.mid(nameBegin, count - tokensAfterName - nameBegin).join(QLatin1Char(' '));
        if (name == QLatin1String("democlient"))
            continue;
        const PlayerRow player{QString::number(*number), name,         tokens.at(3), tokens.at(count - 3),
                               tokens.at(count - 5),     tokens.at(1), tokens.at(2)};
        // A reply that came twice, doubled on its way or given to a repeated request as well, tells of nobody new.
        const QString key = player.identifier + u' ' + playerKey(player);
        if (const auto place = places.constFind(key); place != places.constEnd()) {
            players[*place] = player;
            continue;
        }
        places.insert(key, players.size());
        players.append(player);
    }
    return list;
}
