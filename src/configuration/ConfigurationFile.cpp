#include "ConfigurationFile.h"

#include "GuardedFile.h"
#include "QuotedStrings.h"

#include <QSet>
#include <QStringDecoder>

#include <algorithm>

static constexpr qsizetype longestLine = 65535;

static bool isLineBreak(QChar c)
{
    const char16_t code = c.unicode();
    return (code >= u'\n' && code <= u'\r') || code == 0x85 || code == 0x2028 || code == 0x2029;
}

/// Letters of the Latin alphabet have an empty half in UTF-16: a text of variables is full of them.
static std::optional<QStringConverter::Encoding> unmarkedUtf16(const QByteArray &bytes)
{
    const qsizetype pairs = std::min<qsizetype>(bytes.size(), 4096) / 2;
    qsizetype emptyFirst = 0;
    qsizetype emptySecond = 0;
    for (qsizetype pair = 0; pair < pairs; ++pair) {
        emptyFirst += bytes.at(2 * pair) == 0 ? 1 : 0;
        emptySecond += bytes.at(2 * pair + 1) == 0 ? 1 : 0;
    }
    if (emptyFirst == 0 && emptySecond > pairs / 4)
        return QStringConverter::Utf16LE;
    if (emptySecond == 0 && emptyFirst > pairs / 4)
        return QStringConverter::Utf16BE;
    return std::nullopt;
}

static QStringConverter::Encoding encodingOf(const QByteArray &bytes)
{
    if (const auto marked = QStringConverter::encodingForData(bytes))
        return *marked;
    if (const auto wide = unmarkedUtf16(bytes))
        return *wide;
    return bytes.isValidUtf8() ? QStringConverter::Utf8 : QStringConverter::Latin1;
}

std::optional<QString> ConfigurationFile::decoded(const QByteArray &bytes)
{
    QStringDecoder decoder(encodingOf(bytes));
    QString text = decoder(bytes);
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    if (text.contains(QChar::Null))
        return std::nullopt;
    return text;
}

ConfigurationFile::Content ConfigurationFile::read(const QString &path)
{
    QString error;
    const std::optional<QByteArray> bytes = GuardedFile::readBounded(path, largestSize, &error);
    if (!bytes)
        return {std::nullopt, error};
    std::optional<QString> text = decoded(*bytes);
    if (!text)
        return {std::nullopt, tr("It is not a text.")};
    return {std::move(text), {}};
}

static std::optional<ConfigurationEntry> entryOf(QStringView line)
{
    if (line.startsWith(u"//") || line.size() > longestLine || !line.contains(u'"'))
        return std::nullopt;
    const QStringList quoted = quotedStrings(line.toString());
    if (quoted.size() != 1)
        return std::nullopt;
    const QList<QStringView> words = line.split(u' ', Qt::SkipEmptyParts);
    if (words.size() < 2)
        return std::nullopt;
    const QString &value = quoted.constFirst();
    return ConfigurationEntry{words.constFirst().toString(), value.mid(1, value.size() - 2)};
}

QList<ConfigurationEntry> ConfigurationFile::entries(const QString &text)
{
    QList<ConfigurationEntry> entries;
    QSet<QString> known;
    auto begin = text.cbegin();
    while (begin != text.cend() && entries.size() <= mostEntries) {
        const auto end = std::find_if(begin, text.cend(), isLineBreak);
        const auto entry = entryOf(QStringView(begin, end));
        if (entry && !known.contains(entry->dvar)) {
            known.insert(entry->dvar);
            entries.append(*entry);
        }
        begin = end == text.cend() ? end : end + 1;
    }
    return entries;
}
