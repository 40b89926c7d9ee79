#include "ReplyEnd.h"

#include "QuotedStrings.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <optional>

namespace
{

// A value is not longer; a reply that is must not be read through again with each of its datagrams.
constexpr qsizetype longestJudged = 64 * 1024;

bool isBareWord(const QString &command)
{
    return !command.isEmpty() && std::all_of(command.cbegin(), command.cend(), [](QChar c) {
        return !c.isSpace() && c != QLatin1Char('"') && c != QLatin1Char(';');
    });
}

bool isBlank(QStringView text)
{
    return text.trimmed().isEmpty();
}

/// Whether the quotes around the last field stand where such quotes do, behind a blank and before the end of the line:
/// a value with a quote and a line feed in it makes fields of what stands between two.
bool isLastFieldApart(QStringView reply, qsizetype closingQuote)
{
    qsizetype opening = reply.lastIndexOf(QLatin1Char('"'), closingQuote - 1);
    while (opening > 0 && reply.at(opening - 1) == QLatin1Char('\\'))
        opening = reply.lastIndexOf(QLatin1Char('"'), opening - 1);
    const qsizetype lineFeed = reply.indexOf(QLatin1Char('\n'), closingQuote);
    return opening > 0 && lineFeed > closingQuote && reply.at(opening - 1).isSpace() &&
           isBlank(reply.sliced(closingQuote + 1, lineFeed - closingQuote - 1));
}

/// Name, value and value in force, then a line feed and no further quote. The fields alone would not do: a quote inside
/// a value makes one more of them, and the datagram that brings it may be still on its way.
bool isVariableTold(const QString &name, const QString &reply)
{
    constexpr qsizetype fieldsOfReply = 3;
    const qsizetype lastQuote = reply.lastIndexOf(QLatin1Char('"'));
    if (lastQuote <= 0 || !isLastFieldApart(reply, lastQuote))
        return false;
    const QStringList fields = quotedStrings(reply);
    if (fields.size() != fieldsOfReply || quotedStrings(reply.left(lastQuote)).size() != fieldsOfReply - 1)
        return false;
    return fields.first().mid(1, fields.first().size() - 2).compare(name, Qt::CaseInsensitive) == 0;
}

bool isUnknownCommand(const QString &reply)
{
    return startsWithString(reply, QStringLiteral("Unknown command")) && reply.contains(QLatin1Char('\n'));
}

bool isVariableLine(QStringView line)
{
    const qsizetype opening = line.indexOf(QLatin1Char('"'));
    return opening >= 0 && line.indexOf(QLatin1Char('"'), opening + 1) >= 0;
}

/// The number of variables that the last line of a dump names: "1024 total dvars".
std::optional<qsizetype> namedCount(const QString &dump)
{
    constexpr qsizetype longestLine = 80;
    if (!dump.endsWith(QLatin1Char('\n')))
        return std::nullopt;
    QStringView tail = QStringView(dump).last(std::min(dump.size(), longestLine)).trimmed();
    tail = tail.mid(tail.lastIndexOf(QLatin1Char('\n')) + 1);
    const qsizetype blank = tail.indexOf(QLatin1Char(' '));
    if (blank < 0 || tail.contains(QLatin1Char('"')) || !tail.endsWith(QLatin1String("dvars")))
        return std::nullopt;
    bool isNumber = false;
    const int count = tail.left(blank).toInt(&isNumber);
    return isNumber && count >= 0 ? std::optional<qsizetype>(count) : std::nullopt;
}

} // namespace

ReplyEnd::ReplyEnd(const QString &command)
{
    if (command == QLatin1String("dvardump"))
        m_kind = Kind::Dump;
    else if (startsWithString(command, QStringLiteral("setadmindvar ")))
        m_kind = Kind::EmptyWrite;
    else if (isBareWord(command) && command != QLatin1String("teamstatus"))
        m_kind = Kind::Variable;
    m_name = command;
}

bool ReplyEnd::isWhole(const QString &gathered)
{
    switch (m_kind) {
    case Kind::Variable:
        return gathered.size() < longestJudged && (isVariableTold(m_name, gathered) || isUnknownCommand(gathered));
    case Kind::Dump:
        return isDumpWhole(gathered);
    case Kind::EmptyWrite:
        return gathered.isEmpty();
    case Kind::None:
        break;
    }
    return false;
}

bool ReplyEnd::isDumpWhole(const QString &gathered)
{
    // Each line is looked at once, however many datagrams there are.
    qsizetype end = gathered.indexOf(QLatin1Char('\n'), m_counted);
    while (end >= 0) {
        m_variables += isVariableLine(QStringView(gathered).sliced(m_counted, end - m_counted)) ? 1 : 0;
        m_counted = end + 1;
        end = gathered.indexOf(QLatin1Char('\n'), m_counted);
    }
    return namedCount(gathered) == m_variables;
}

bool ReplyEnd::isDumpShort(const QString &dump)
{
    const std::optional<qsizetype> count = namedCount(dump);
    if (!count)
        return false;
    QSet<QStringView> variables; // a part that came twice tells of none twice
    for (const QStringView line : QStringView(dump).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (isVariableLine(line))
            variables.insert(line);
    }
    return variables.size() < *count;
}
