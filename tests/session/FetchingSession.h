#pragma once

#include "ActionQueue.h"
#include "CatalogueLoader.h"
#include "DvarFetcher.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "UnknownDvars.h"

#include <QTemporaryDir>

/// Catalogues that name these variables and nothing else.
class FewCatalogues final : public CatalogueLoader
{
public:
    QCoro::Task<> loadCatalogues() override
    {
        calls.append(QStringLiteral("load"));
        co_return;
    }
    QStringList settingDvars() const override { return settings; }
    QStringList gametypeDvars() const override { return gametypes; }
    QCoro::Task<> updateControls() override
    {
        calls.append(QStringLiteral("update"));
        co_return;
    }

    QStringList settings{"h_a", "h_b", "h_c"};
    QStringList gametypes{"rule_a", "h_a"};
    QStringList calls;
};

/// A session with a scripted server, few catalogued variables and what fetches them.
struct FetchingSession {
    QTemporaryDir folder;
    Preferences preferences{folder.filePath(QStringLiteral("preferences.ini"))};
    UnknownDvars unknownDvars{preferences};
    FewCatalogues catalogues;
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    DvarFetcher fetcher{server, actions, unknownDvars};
};
