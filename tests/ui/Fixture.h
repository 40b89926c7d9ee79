#pragma once

#include "ActionQueue.h"
#include "CatalogueReader.h"
#include "GameCatalogues.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "Rotations.h"
#include "SavedServers.h"
#include "ScriptedExchange.h"
#include "Wait.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

/// What a view of the tests stands on: a scripted server, recorded alerts, preferences of its own.
struct Fixture {
    Fixture()
    {
        preferences.registerDefaults(
            {{QStringLiteral("autoUpdatePlayers"), false}, {QStringLiteral("autoUpdatePlayersTime"), 30}});
        exchange.answer(QStringLiteral("dvardump"), ScriptedExchange::dump());
    }

    void connectToServer()
    {
        awaited(server.connectToHost(QStringLiteral("10.0.0.1"), QStringLiteral("28960"), QStringLiteral("typed")));
        exchange.forgetSent();
    }

    GameCatalogues catalogues() { return {gametypes, settings, maps, playlists}; }
    Rotations rotations() { return {mapRotations, messageRotations}; }

    /// @return whether all actions have ended.
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }

    /// What the server was asked once all actions have ended.
    QStringList sent() { return settle() ? exchange.sent() : QStringList{QStringLiteral("an action has not ended")}; }

    /// Puts a catalogue into the user's folder; it is loaded only when the test does so.
    void write(const QString &extension, const QByteArray &xml)
    {
        QFile file(folder.filePath(QStringLiteral("FerrowRcon.exe.") + extension));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(xml), xml.size());
    }

    QTemporaryDir folder;
    Preferences preferences{folder.filePath(QStringLiteral("preferences.ini"))};
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    /// The shipped catalogues, with working copies in a folder of the test; connecting does not ask for them by itself.
    CatalogueReader reader{{QStringLiteral(FERROW_RESOURCES), folder.path()}, alerts, [] {
                           }};
    KelGametype gametypes{{server, alerts}, reader};
    KelSettings settings{{server, alerts}, reader};
    KelMapList maps{server, reader};
    KelPlaylists playlists{server, gametypes, maps, alerts, QStringLiteral(FERROW_RESOURCES)};
    KelMapRotation mapRotations{preferences, alerts, folder.path()};
    KelMessageRotation messageRotations{{preferences, alerts, server, actions}, folder.path()};
    SavedServers savedServers{folder.filePath(QStringLiteral("SavedServers.plist")), QStringLiteral("tester")};
};
