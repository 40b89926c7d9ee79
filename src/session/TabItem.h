#pragma once

#include <QString>

/// The tabs of the main window.
enum class TabItem { Players, Maps, Playlists, UnrankedSettings, RankedSettings, Messages, ConfigBuilder, Console };

/// The name by which the rest of the program recognises a tab. The window translates it where it shows it.
inline QString tabLabel(TabItem item)
{
    switch (item) {
    case TabItem::Players:
        return QStringLiteral("Players");
    case TabItem::Maps:
        return QStringLiteral("Maps");
    case TabItem::Playlists:
        return QStringLiteral("Playlists");
    case TabItem::UnrankedSettings:
    case TabItem::RankedSettings:
        return QStringLiteral("Settings");
    case TabItem::Messages:
        return QStringLiteral("Messages");
    case TabItem::ConfigBuilder:
        return QStringLiteral("Config Builder");
    case TabItem::Console:
        return QStringLiteral("Console");
    }
    return {};
}
