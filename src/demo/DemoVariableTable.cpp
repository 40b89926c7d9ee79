#include "DemoVariableTable.h"

#include <array>

namespace
{
using Row = DemoVariableRow;

constexpr auto Table = std::to_array<Row>({
    {"com_maxfps", "60", Row::Integer, 0, 1000},
    {"g_allowVote", "1", Row::Switch},
    {"g_antilag", "1", Row::Switch},
    {"g_banIPs", ""},
    {"g_chatDelay", "0.5", Row::Decimal, 0, 30},
    {"g_deadChat", "0", Row::Switch},
    {"g_gametype", "tdm", Row::Gametype, 0, 0, Row::Latched},
    {"g_gravity", "800", Row::Integer, 1, 2000},
    {"g_inactivity", "180", Row::Integer, 0, 3600},
    {"g_knockback", "1000", Row::Integer, -9999, 9999},
    {"g_log", "games_mp.log"},
    {"g_logSync", "1", Row::Switch},
    {"g_motd", "Mind the tide. Be kind to newcomers."},
    {"g_password", ""},
    {"g_smoothClients", "1", Row::Switch},
    {"g_speed", "190", Row::Integer, 0, 1000},
    {"g_teamName_allies", "Lamplighters"},
    {"g_teamName_axis", "Night Watch"},
    {"gamename", "Kelvard Ferrow", Row::Text, 0, 0, Row::ReadOnly},
    {"mapname", "", Row::Text, 0, 0, Row::ReadOnly},
    {"net_ip", "127.0.0.1", Row::Text, 0, 0, Row::ReadOnly},
    {"perk_deepPockets", "1", Row::Switch},
    {"perk_fastHands", "1", Row::Switch},
    {"perk_featherFall", "0", Row::Switch},
    {"perk_ghostStep", "1", Row::Switch},
    {"perk_ironLungs", "1", Row::Switch},
    {"perk_keenEar", "0", Row::Switch},
    {"perk_longStride", "1", Row::Switch},
    {"perk_quickFix", "1", Row::Switch},
    {"perk_scavenge", "1", Row::Switch},
    {"perk_secondWind", "0", Row::Switch},
    {"perk_steadyAim", "1", Row::Switch},
    {"perk_thickCoat", "1", Row::Switch},
    {"playlist", "0", Row::Integer, 0, 999},
    {"playlist_enabled", "0", Row::Switch},
    {"playlist_excludeGametype", ""},
    {"playlist_excludeGametypeMap", ""},
    {"playlist_excludeMap", ""},
    {"protocol", "21", Row::Text, 0, 0, Row::ReadOnly},
    {"rcon_password", "demo"},
    {"scr_allowHeadwear", "1", Row::Switch},
    {"scr_drawFriend", "1", Row::Switch},
    {"scr_forceRespawn", "0", Row::Switch},
    {"scr_game_allowReplay", "1", Row::Switch},
    {"scr_game_graceTime", "15", Row::Integer, 0, 60},
    {"scr_game_spectateType", "1", Row::Integer, 0, 3},
    {"scr_hardcore", "0", Row::Switch},
    {"scr_player_healthRegenTime", "5", Row::Decimal, 0, 60},
    {"scr_player_maxHealth", "100", Row::Integer, 1, 2000},
    {"scr_player_respawnDelay", "0", Row::Decimal, -1, 60},
    {"scr_player_sprintTime", "4", Row::Decimal, 0, 12},
    {"scr_team_friendlyFire", "0", Row::Integer, 0, 3},
    {"scr_teamBalance", "1", Row::Switch},
    {"sv_allowAnonymous", "0", Row::Switch},
    {"sv_allowDownload", "1", Row::Switch},
    {"sv_connectTimeout", "200", Row::Integer, 0, 1800},
    {"sv_floodProtect", "4", Row::Integer, 0, 10},
    {"sv_fps", "20", Row::Integer, 10, 1000},
    {"sv_hostname", "Harbour Lights | Demo Server"},
    {"sv_mapRotation",
     "gametype tdm map mp_harbourlights map mp_saltworks gametype dom map mp_glasshouse map mp_ropeway "
     "gametype ctf map mp_lanternrow map mp_millrace gametype koth map mp_signalhill gametype dm map "
     "mp_tramyard"},
    {"sv_mapRotationCurrent", ""},
    {"sv_maxPing", "350", Row::Integer, 0, 999},
    {"sv_maxRate", "25000", Row::Integer, 0, 25000},
    {"sv_maxclients", "18", Row::Text, 0, 0, Row::ReadOnly},
    {"sv_minPing", "0", Row::Integer, 0, 999},
    {"sv_privateClients", "2", Row::Integer, 0, 64},
    {"sv_pure", "1", Row::Switch},
    {"sv_ranked", "0", Row::Text, 0, 0, Row::ReadOnly},
    {"sv_reconnectLimit", "3", Row::Integer, 0, 1800},
    {"sv_tempBanTime", "300", Row::Integer, 0, 3600},
    {"sv_timeout", "240", Row::Integer, 0, 1800},
    {"sv_voice", "1", Row::Switch},
    {"sv_voiceQuality", "3", Row::Integer, 0, 9},
    {"version", "Ferrow MP 1.4 demo", Row::Text, 0, 0, Row::ReadOnly},
});
} // namespace

std::span<const DemoVariableRow> demoVariableTable()
{
    return Table;
}
