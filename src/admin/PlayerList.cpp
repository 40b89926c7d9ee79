#include "PlayerList.h"

#include "Number.h"

#include <QStringList>

static QStringList tokensOf(QStringView line)
{
    QStringList tokens;
    qsizetype begin = 0;
    for (qsizetype i = 0; i <= line.size(); ++i) {
        if (i < line.size() && line.at(i) != QLatin1Char(' ') && line.at(i) != QLatin1Char('\t'))
            continue;
        if (i > begin)
            tokens.append(line.sliced(begin, i - begin).toString());
        begin = i + 1;
    }
    return tokens;
}

QString playerKey(const PlayerRow &player)
{
    return player.name + player.ipaddress;
}

QList<PlayerRow> parsePlayerList(const QString &reply)
{
    // num score ping guid name… team lastmsg address qport rate
    constexpr qsizetype fewestTokens = 10;
    constexpr qsizetype nameBegin = 4;
    constexpr qsizetype tokensAfterName = 5;
    QList<PlayerRow> players;
    for (const QStringView line : QStringView(reply).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (players.size() == mostPlayers)
            break;
        const QStringList tokens = tokensOf(line);
        const qsizetype count = tokens.size();
        if (count < fewestTokens)
            continue;
        const std::optional<qint64> number = parseNumber(tokens.at(0));
        if (!number)
            continue;
        const QString name = tokens.mid(nameBegin, count - tokensAfterName - nameBegin).join(QLatin1Char(' '));
        if (name == QLatin1String("democlient"))
            continue;
        players.append(PlayerRow{QString::number(*number), name, tokens.at(3), tokens.at(count - 3),
                                 tokens.at(count - 5), tokens.at(1), tokens.at(2)});
    }
    return players;
}

QVariant numberSortKey(const QString &text)
{
    if (const std::optional<qint64> number = parseNumber(text))
        return *number;
    return text;
}

QVariant addressSortKey(const QString &text)
{
    const QStringList hostAndPort = text.split(QLatin1Char(':'));
    const QStringList bytes = hostAndPort.first().split(QLatin1Char('.'));
    if (bytes.size() != 4 || hostAndPort.size() > 2)
        return text;
    qint64 key = 0;
    for (const QString &byte : bytes) {
        bool isNumber = false;
        const uint value = byte.toUInt(&isNumber);
        if (!isNumber || value > 255)
            return text;
        key = key * 256 + value;
    }
    const uint port = hostAndPort.size() == 2 ? hostAndPort.last().toUShort() : 0U;
    return key * 65536 + port;
}
