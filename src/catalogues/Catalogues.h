#pragma once

#include "CatalogueLoader.h"

class KelGametype;
class KelPlaylists;
class KelSettings;

/// The gametypes, the settings and the playlists together, as the session loads and asks for them. Main thread only.
class Catalogues : public CatalogueLoader
{
public:
    /// All of them outlive this.
    Catalogues(KelGametype &gametypes, KelSettings &settings, KelPlaylists &playlists)
        : m_gametypes(gametypes), m_settings(settings), m_playlists(playlists)
    {
    }

    QCoro::Task<> loadCatalogues() override;
    QStringList settingDvars() const override;
    QStringList gametypeDvars() const override;
    QCoro::Task<> updateControls() override;

private:
    KelGametype &m_gametypes;
    KelSettings &m_settings;
    KelPlaylists &m_playlists;
};
