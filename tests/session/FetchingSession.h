#pragma once

#include "ActionQueue.h"
#include "DvarFetcher.h"
#include "FewCatalogues.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "UnknownDvars.h"

#include <QTemporaryDir>

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
