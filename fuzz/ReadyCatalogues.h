#pragma once

#include "KelGametype.h"
#include "KelMapList.h"
#include "KelSettings.h"
#include "ReadySession.h"

/// The catalogues of a session without a line, empty until they take a document.
struct ReadyCatalogues : ReadySession {
    CatalogueReader reader{{}, alerts, [] {
                           }};
    KelGametype gametypes{server, reader};
    KelSettings settings{server, reader};
    KelMapList maps{server, reader};
};
