#include "DemoContent.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

namespace
{
constexpr auto Maps = std::to_array<DemoMap>({
    {"ward_brickfield", "closed_brickfield"},
    {"ward_coldstore", "closed_coldstore"},
    {"ward_glasshouse", "closed_glasshouse"},
    {"ward_gravelpit", "closed_gravelpit"},
    {"ward_harbourlights", "closed_harbourlights"},
    {"ward_lanternrow", "closed_lanternrow"},
    {"ward_lowbridge", "closed_lowbridge"},
    {"ward_millrace", "closed_millrace"},
    {"ward_orchardwall", "closed_orchardwall"},
    {"ward_papermill", "closed_papermill"},
    {"ward_ropeway", "closed_ropeway"},
    {"ward_saltworks", "closed_saltworks"},
    {"ward_signalhill", "closed_signalhill"},
    {"ward_tramyard", "closed_tramyard"},
    {"ward_weatherstation", "closed_weatherstation"},
    {"ward_windbreak", "closed_windbreak"},
});

constexpr auto Gametypes = std::to_array<DemoGametype>({
    {"carry", true, 150, "15000", "15"},
    {"alone", false, 50, "1500", "10"},
    {"docks", true, 50, "9000", "15"},
    {"board", false, 100, "2500", "5"},
    {"errand", true, 75, "9000", "10"},
    {"marsh", true, 125, "12500", "12"},
    {"beacon", true, 50, "7500", "10"},
    {"rungs", false, 50, "1250", "10"},
    {"candle", true, 100, "10000", "8"},
    {"quays", true, 75, "8000", "10"},
    {"sluice", true, 100, "12000", "20"},
    {"crews", true, 100, "12000", "10"},
});

constexpr auto Playlists = std::to_array<DemoPlaylist>({
    {1, "crews"},
    {2, "alone"},
    {3, "docks beacon"},
    {4, "carry"},
    {5, "sluice errand"},
    {6, "candle"},
    {7, "crews docks beacon carry"},
    {8, "carry alone docks errand beacon candle sluice crews"},
    {9, "crews alone"},
    {21, "candle"},
    {22, "alone"},
    {23, "beacon"},
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
