#include "PlaylistFile.h"

#include "BoundedFile.h"
#include "Number.h"

#include <QStringDecoder>

namespace
{
/// Where the search for a value's opening quote begins.
constexpr qsizetype nameStart = 12;
constexpr qsizetype descriptionStart = 19;

/// The text from the first quote on or after `start` up to the line's last character, which is its closing quote.
std::optional<QString> quotedText(QStringView line, qsizetype start)
{
    const qsizetype quote = line.indexOf(u'"', start);
    if (quote < 0 || quote == line.size() - 1)
        return std::nullopt;
    return line.sliced(quote + 1).chopped(1).toString();
}

/// Escaped line breaks become blanks, and of several blanks one stays.
QString cleanedUp(const QString &description)
{
    QString text = description;
    text.replace(QLatin1String("\\n"), QLatin1String(" "));
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts).join(QLatin1Char(' '));
}

class Parser
{
public:
    explicit Parser(PlaylistFile &file) : m_file(file) {}

    void take(QStringView line)
    {
        if (line.isEmpty())
            closeBlock();
        else if (line.startsWith(u"gametype "))
            openGametype(line);
        else if (line.startsWith(u"playlist "))
            openPlaylist(line);
        else if (m_block == Block::Gametype)
            takeGametypeLine(line);
        else if (m_block == Block::Playlist)
            takePlaylistLine(line);
    }

private:
    enum class Block { None, Gametype, Playlist };

    /// Opening a block abandons one that is still open.
    void openGametype(QStringView line)
    {
        m_gametype = {};
        const QList<QStringView> words = line.split(u' ', Qt::SkipEmptyParts);
        if (words.size() > 1)
            m_gametype.dvar = words.at(1).toString();
        m_block = Block::Gametype;
    }

    void openPlaylist(QStringView line)
    {
        m_playlist = {};
        const QList<QStringView> words = line.split(u' ', Qt::SkipEmptyParts);
        if (words.size() > 1)
            m_playlist.ID = parseNumber(words.at(1).toString()).value_or(0);
        m_block = Block::Playlist;
    }

    void takeGametypeLine(QStringView line)
    {
        if (line.startsWith(u"name english "))
            m_gametype.name = quotedText(line, nameStart).value_or(m_gametype.name);
    }

    void takePlaylistLine(QStringView line)
    {
        if (line.startsWith(u"name english ")) {
            m_playlist.name = quotedText(line, nameStart).value_or(m_playlist.name);
        } else if (line.startsWith(u"description english ")) {
            if (const std::optional<QString> text = quotedText(line, descriptionStart))
                m_playlist.playlistDescription = cleanedUp(*text);
        } else if (line.startsWith(u"wagerbet") || line.startsWith(u"wagerentry")) {
            m_block = Block::None; // for stakes, which no administrator can start
        }
    }

    void closeBlock()
    {
        if (m_block == Block::Gametype && !m_gametype.name.isEmpty())
            m_file.gametypes.append(m_gametype);
        if (m_block == Block::Playlist && !m_playlist.name.isEmpty())
            m_file.playlists.append(m_playlist);
        m_block = Block::None;
    }

    PlaylistFile &m_file;
    Block m_block = Block::None;
    PlaylistGametypeInst m_gametype;
    PlaylistInst m_playlist;
};
} // namespace

PlaylistFile PlaylistFile::parse(QStringView text)
{
    PlaylistFile file;
    Parser parser(file);
    for (const QStringView line : text.split(u'\n'))
        parser.take(line.trimmed());
    return file;
}

std::optional<PlaylistFile> PlaylistFile::parse(const QByteArray &bytes, QString *reason)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError()) {
        *reason = tr("It is not a text in UTF-8.");
        return std::nullopt;
    }
    return parse(text);
}

std::optional<PlaylistFile> PlaylistFile::read(const QString &path, QString *error)
{
    QString reason;
    std::optional<PlaylistFile> content;
    if (const std::optional<QByteArray> bytes = BoundedFile::read(path, MaximumSize, &reason))
        content = parse(*bytes, &reason);
    if (!content && error != nullptr)
        *error = tr("The file \"%1\" cannot be read.\n\n%2").arg(path, reason);
    return content;
}
