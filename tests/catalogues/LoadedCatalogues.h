#pragma once

#include "CatalogueFixture.h"
#include "Catalogues.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelSettings.h"

#include <optional>

/// All catalogues on a scripted server and files of the test's own.
struct LoadedCatalogues {
    explicit LoadedCatalogues(const std::optional<QString> &resources = std::nullopt)
        : reader({resources.value_or(files.folders().resources), files.folders().applicationSupport}, session.alerts,
                 [this] { ++terminations; }),
          gametypes(session.server, reader), settings(session.server, reader), maps(session.server, reader),
          playlists(session.server, gametypes, maps, session.alerts, reader.folders().resources),
          catalogues(gametypes, settings, maps, playlists)
    {
    }

    /// Puts a catalogue into the user's folder and loads it.
    void loadGametypes(const QByteArray &xml)
    {
        QVERIFY(files.write(files.user("gametypes"), xml));
        awaited(gametypes.loadGametypeList());
    }
    void loadSettings(const QByteArray &xml)
    {
        QVERIFY(files.write(files.user("gameSettingsUnranked"), xml));
        awaited(settings.loadSettings());
    }
    void loadMaps(const QByteArray &xml)
    {
        QVERIFY(files.write(files.user("maps"), xml));
        awaited(maps.loadMapList());
    }

    ScriptedFolders files;
    ScriptedSession session;
    int terminations = 0;
    CatalogueReader reader;
    KelGametype gametypes;
    KelSettings settings;
    KelMapList maps;
    KelPlaylists playlists;
    Catalogues catalogues;
};
