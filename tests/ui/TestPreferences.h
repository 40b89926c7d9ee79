#pragma once

#include "Preferences.h"

#include <QTemporaryDir>

/// Preferences in a folder of the test, with what the application registers.
struct TestPreferences : Preferences {
    explicit TestPreferences(const QTemporaryDir &folder)
        : Preferences(folder.filePath(QStringLiteral("preferences.ini")))
    {
        registerDefaults({{QStringLiteral("autoUpdatePlayers"), false},
                          {QStringLiteral("autoUpdatePlayersTime"), 30},
                          {QStringLiteral("autoupdateMaps"), false},
                          {QStringLiteral("autoupdateMapsInterval"), 30}});
    }
};
