#pragma once

#include "ActionQueue.h"
#include "KelMessageRotation.h"
#include "KelServer.h"
#include "PlayersView.h"
#include "Preferences.h"
#include "RConExchange.h"
#include "RecordedAlerts.h"

#include <QTemporaryDir>

/// What talks to a game server, with its real sockets and timers.
struct RealConsole {
    RealConsole() { players.setInFront(true); }

    QTemporaryDir folder;
    Preferences preferences{folder.filePath("preferences.ini")};
    RConExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    KelMessageRotation messages{{preferences, alerts, server, actions}, folder.path()};
    PlayersView players{server, actions, alerts, preferences};
};
