#include "Fuzzing.h"

#include "PlaylistFile.h"

static QString written(const PlaylistFile &file)
{
    QString text;
    for (const PlaylistGametypeInst &gametype : file.gametypes)
        text += QStringLiteral("gametype %1 x\nname english \"%2\"\n\n").arg(gametype.dvar, gametype.name);
    for (const PlaylistInst &playlist : file.playlists) {
        text += QStringLiteral("playlist %1\nname english \"%2\"\n").arg(QString::number(playlist.ID), playlist.name);
        text += QStringLiteral("description english \"%1\"\n\n").arg(playlist.playlistDescription);
    }
    return text;
}

static void checkContent(const PlaylistFile &file, qsizetype lines)
{
    require(file.playlists.size() + file.gametypes.size() <= lines / 3, "a block has a head, a name and an end");
    for (const PlaylistInst &playlist : file.playlists) {
        const QString &text = playlist.playlistDescription;
        require(!playlist.name.isEmpty(), "a playlist has a name");
        require(!text.contains("\\n") && !text.contains("  ") && !text.startsWith(u' ') && !text.endsWith(u' '),
                "a description is cleaned up");
    }
    bool areWhole = true;
    for (const PlaylistGametypeInst &gametype : file.gametypes) {
        require(!gametype.name.isEmpty() && !gametype.dvar.contains(u' '), "a gametype has a name and a word");
        areWhole = areWhole && !gametype.dvar.isEmpty();
    }
    const PlaylistFile again = PlaylistFile::parse(written(file));
    require(again.playlists == file.playlists, "playlists are read again");
    require(!areWhole || again.gametypes == file.gametypes, "gametypes are read again");
}

static void fuzz(const QByteArray &bytes)
{
    QString reason;
    const std::optional<PlaylistFile> file = PlaylistFile::parse(bytes, &reason);
    require(file.has_value() == reason.isEmpty(), "a file that is refused has a reason");
    require(file.has_value() == bytes.isValidUtf8(), "what is UTF-8 is read");
    if (file)
        checkContent(*file, bytes.count('\n') + 1);
}
