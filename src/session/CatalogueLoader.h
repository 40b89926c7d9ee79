#pragma once

#include <QCoroTask>

#include <QStringList>

/// What the session asks of the game catalogues while it connects. Main thread only.
class CatalogueLoader
{
public:
    CatalogueLoader() = default;
    virtual ~CatalogueLoader() = default;
    CatalogueLoader(const CatalogueLoader &) = delete;
    CatalogueLoader &operator=(const CatalogueLoader &) = delete;

    /// Loads the gametypes and then the settings for the server's mode. The session's mode is set when this is called.
    virtual QCoro::Task<> loadCatalogues() = 0;
    /// @return the variables of all settings, group by group.
    virtual QStringList settingDvars() const = 0;
    /// @return the variables of all gametypes' settings.
    virtual QStringList gametypeDvars() const = 0;
    /// Every catalogued variable has been asked for: the playlists follow the server.
    virtual QCoro::Task<> updateControls() = 0;
};
