#pragma once

#include "CatalogueLoader.h"

/// Catalogues that name these variables and nothing else.
class FewCatalogues final : public CatalogueLoader
{
public:
    QCoro::Task<> loadCatalogues() override
    {
        ++loads;
        co_return;
    }
    QStringList settingDvars() const override { return settings; }
    QStringList gametypeDvars() const override { return gametypes; }
    QCoro::Task<> updateControls() override { co_return; }

    QStringList settings{"g_a", "g_b", "g_c"};
    QStringList gametypes{"scr_a", "g_a"};
    int loads = 0;
};
