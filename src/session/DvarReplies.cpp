#include "DvarReplies.h"

#include "QuotedStrings.h"

#include <QStringList>

std::optional<std::pair<QString, QString>> dumpedDvar(QStringView line)
{
    const QChar quote = QLatin1Char('"');
    const qsizetype opening = line.indexOf(quote);
    const qsizetype closing = opening < 0 ? -1 : line.indexOf(quote, opening + 1);
    if (closing < 0)
        return std::nullopt;
    const QStringView value = line.sliced(opening + 1, closing - opening - 1);
    qsizetype end = opening;
    while (end > 0 && line.at(end - 1) == QLatin1Char(' '))
        --end;
    qsizetype begin = end;
    while (begin > 0 && line.at(begin - 1) != QLatin1Char(' '))
        --begin;
    if (begin == end || value.isEmpty())
        return std::nullopt;
    return std::pair(line.sliced(begin, end - begin).toString(), value.toString());
}

void takeDump(QStringView dump, DvarTable *dvars)
{
    for (const QStringView line : dump.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const auto dvar = dumpedDvar(line);
        if (dvar && (dvars->size() < mostDumpedDvars || dvars->contains(dvar->first)))
            dvars->insert(dvar->first, dvar->second);
    }
}

std::optional<QString> toldValue(const QString &reply)
{
    constexpr qsizetype fieldsOfReply = 3;
    QStringList fields = quotedStrings(reply);
    while (fields.size() > fieldsOfReply && fields.last(fieldsOfReply) == fields.first(fieldsOfReply))
        fields.resize(fields.size() - fieldsOfReply);
    if (fields.size() != fieldsOfReply)
        return std::nullopt;
    const QString &value = fields.last();
    return value.mid(1, value.size() - 2);
}

bool isUnknownDvar(const QString &reply)
{
    return startsWithString(reply, QStringLiteral("Unknown command"));
}

bool isValueRefused(const QString &reply)
{
    return reply.contains(QLatin1String("not a valid value"));
}
