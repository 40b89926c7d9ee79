#include "DemoContent.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

namespace
{
constexpr auto Maps = std::to_array<DemoMap>({
    {"mp_brickfield", "mapexclude_brickfield"},
    {"mp_coldstore", "mapexclude_coldstore"},
    {"mp_glasshouse", "mapexclude_glasshouse"},
    {"mp_gravelpit", "mapexclude_gravelpit"},
    {"mp_harbourlights", "mapexclude_harbourlights"},
    {"mp_lanternrow", "mapexclude_lanternrow"},
    {"mp_lowbridge", "mapexclude_lowbridge"},
    {"mp_millrace", "mapexclude_millrace"},
    {"mp_orchardwall", "mapexclude_orchardwall"},
    {"mp_papermill", "mapexclude_papermill"},
    {"mp_ropeway", "mapexclude_ropeway"},
    {"mp_saltworks", "mapexclude_saltworks"},
    {"mp_signalhill", "mapexclude_signalhill"},
    {"mp_tramyard", "mapexclude_tramyard"},
    {"mp_weatherstation", "mapexclude_weatherstation"},
    {"mp_windbreak", "mapexclude_windbreak"},
});

constexpr auto Gametypes = std::to_array<DemoGametype>({
    {"ctf", true, 150, "15000", "15"},
    {"dm", false, 50, "1500", "10"},
    {"dom", true, 50, "9000", "15"},
    {"duel", false, 100, "2500", "5"},
    {"esc", true, 75, "9000", "10"},
    {"hunt", true, 125, "12500", "12"},
    {"koth", true, 50, "7500", "10"},
    {"ladder", false, 50, "1250", "10"},
    {"lms", true, 100, "10000", "8"},
    {"relay", true, 75, "8000", "10"},
    {"siege", true, 100, "12000", "20"},
    {"tdm", true, 100, "12000", "10"},
});

constexpr auto Playlists = std::to_array<DemoPlaylist>({
    {1, "tdm"},
    {2, "dm"},
    {3, "dom koth"},
    {4, "ctf"},
    {5, "siege esc"},
    {6, "lms"},
    {7, "tdm dom koth ctf"},
    {8, "ctf dm dom esc koth lms siege tdm"},
    {9, "tdm dm"},
    {21, "lms"},
    {22, "dm"},
    {23, "koth"},
});

constexpr auto Names = std::to_array<const char *>({
    "Old Tom",        "^1Ember^7Fox",      "Lady Marlowe",     "quiet_storm",
    "Pixel Pilgrim",  "[OAK] Rowan",       "Tuesday",          "^3Saffron",
    "Captain Nobody", "mistral",           "Kettle & Fog",     "zer0dust",
    "[OAK] Alder",    "Bj\u00f8rn",        "Half a Biscuit",   "^5North^7Wind",
    "Gullwing",       "Mrs. Lantern",      "tin_whistle",      "Bramble",
    "The Ferryman",   "-=Quartz=-",        "Ottoline",         "Low Tide",
    "sparrow 9",      "^2Moss^7Garden",    "Inkwell",          "Doc Thistle",
    "Copperplate",    "no_idea",           "[OAK] Hazel",      "Pebble",
    "Lucky Number 7", "^6Velvet",          "windowseat",       "Big Bad Barnaby",
    "Marzipan",       "Halfpenny",         "Cobalt & Sons",    "slow_clap",
    "Rook",           "Ada Quill",         "^4Deep^7Water",    "Turnip Prince",
    "Ashlar",         "ghost of_a_chance", "Penny Dreadfully", "Sorrel",
});
} // namespace

std::span<const DemoMap> demoMaps()
{
    return Maps;
}

std::span<const DemoGametype> demoGametypes()
{
    return Gametypes;
}

std::span<const DemoPlaylist> demoPlaylists()
{
    return Playlists;
}

std::span<const char *const> demoNames()
{
    return Names;
}

const DemoGametype *findDemoGametype(QStringView name)
{
    const auto found = std::find_if(Gametypes.begin(), Gametypes.end(), [name](const DemoGametype &gametype) {
        return name == QLatin1StringView(gametype.name);
    });
    return found == Gametypes.end() ? nullptr : &*found;
}

bool isDemoMap(QStringView name)
{
    return std::any_of(Maps.begin(), Maps.end(),
                       [name](const DemoMap &map) { return name == QLatin1StringView(map.name); });
}
