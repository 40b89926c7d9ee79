#pragma once

class KelGametype;
class KelMapList;
class KelPlaylists;
class KelSettings;

/// What the window knows of the game. All of it outlives the window.
struct GameCatalogues {
    KelGametype &gametypes;
    KelSettings &settings;
    KelMapList &maps;
    KelPlaylists &playlists;
};
