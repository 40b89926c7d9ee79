#pragma once

#include <QFlags>

/// The sets of tabs that the window shows, by the mode of the server. None is only before the first connect.
enum class TabSet { None = 0, Ranked = 1, UnrankedMaps = 2, UnrankedPlaylists = 4 };
Q_DECLARE_FLAGS(TabSets, TabSet)
Q_DECLARE_OPERATORS_FOR_FLAGS(TabSets)
