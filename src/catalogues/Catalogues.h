#pragma once

#include "CatalogueLoader.h"

class KelGametype;
class KelMapList;
class KelPlaylists;
class KelSettings;

/// What the program knows of the game. The session loads it and asks for it while it connects. Main thread only.
class Catalogues final : public CatalogueLoader
{
public:
    /// All of them outlive this.
    Catalogues(KelGametype &theGametypes, KelSettings &theSettings, KelMapList &theMaps, KelPlaylists &thePlaylists)
        : gametypes(theGametypes), settings(theSettings), maps(theMaps), playlists(thePlaylists)
    {
    }

    QCoro::Task<> loadCatalogues() override;
    QStringList settingDvars() const override;
    QStringList gametypeDvars() const override;
    QCoro::Task<> updateControls() override;

    KelGametype &gametypes;
    KelSettings &settings;
    KelMapList &maps;
    KelPlaylists &playlists;
};
