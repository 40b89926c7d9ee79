#pragma once

#include "CataloguesFixture.h"
#include "FormMainView.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "Rotations.h"
#include "SavedServers.h"
#include "TestPreferences.h"

/// All that the window shows.
struct WindowFixture : CataloguesFixture {
    /// What still runs uses the views.
    ~WindowFixture()
    {
        actions.close();
        server.cancelExchange();
        server.disconnect();
        if (!settle())
            qFatal("an action does not end");
    }
    /// Gives every reply until all actions have ended. @return whether they have.
    bool releaseEverything()
    {
        return QTest::qWaitFor([this] {
            if (exchange.keptCount() > 0)
                exchange.release();
            return actions.isIdle();
        });
    }
    Workplace workplace()
    {
        return {server,  actions,      alerts,     preferences,
                fetcher, reconnecting, catalogues, {mapRotations, messageRotations}};
    }

    TestPreferences preferences{folder};
    KelMapRotation mapRotations{preferences, alerts, folder.path()};
    KelMessageRotation messageRotations{{preferences, alerts, server, actions}, folder.path()};
    SavedServers savedServers{folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester")};
    FormMainView view{workplace(), savedServers};
};
