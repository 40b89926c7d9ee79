#pragma once

#include "CatalogueLoader.h"

class KelGametype;
class KelSettings;

/// The gametypes and the settings together, as the session loads and asks for them. Main thread only.
class Catalogues : public CatalogueLoader
{
public:
    /// Both outlive this.
    Catalogues(KelGametype &gametypes, KelSettings &settings) : m_gametypes(gametypes), m_settings(settings) {}

    QCoro::Task<> loadCatalogues() override;
    QStringList settingDvars() const override;
    QStringList gametypeDvars() const override;
    QCoro::Task<> updateControls() override;

private:
    KelGametype &m_gametypes;
    KelSettings &m_settings;
};
