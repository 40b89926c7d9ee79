#include "Tabs.h"

#include "ConfigBuilderView.h"
#include "ConsoleView.h"
#include "MapsView.h"
#include "MessagesView.h"
#include "PlayersView.h"
#include "PlaylistsView.h"
#include "SettingsView.h"

#include <QCoreApplication>

static TabPage *makePlayers(const Workplace &place, QWidget *parent)
{
    return new PlayersView(place.server, place.actions, place.alerts, place.preferences, parent);
}

static TabPage *makeMaps(const Workplace &place, QWidget *parent)
{
    return new MapsView(place.server, place.actions, place.alerts, place.preferences, place.catalogues,
                        place.rotations.maps, parent);
}

static TabPage *makePlaylists(const Workplace &place, QWidget *parent)
{
    return new PlaylistsView(place.server, place.actions, place.alerts, place.catalogues.gametypes,
                             place.catalogues.maps, place.catalogues.playlists, parent);
}

static TabPage *makeUnrankedSettings(const Workplace &place, QWidget *parent)
{
    return new SettingsView(SettingsView::Mode::Unranked, place.server, place.actions, place.fetcher,
                            place.catalogues.settings, place.catalogues.gametypes, parent);
}

static TabPage *makeRankedSettings(const Workplace &place, QWidget *parent)
{
    return new SettingsView(SettingsView::Mode::Ranked, place.server, place.actions, place.fetcher,
                            place.catalogues.settings, place.catalogues.gametypes, parent);
}

static TabPage *makeMessages(const Workplace &place, QWidget *parent)
{
    return new MessagesView(place.rotations.messages, place.actions, place.alerts, place.preferences, parent);
}

static TabPage *makeConfigBuilder(const Workplace &place, QWidget *parent)
{
    return new ConfigBuilderView(place.server, place.actions, place.alerts, place.fetcher, place.preferences,
                                 place.catalogues.settings, place.catalogues.gametypes, parent);
}

static TabPage *makeConsole(const Workplace &place, QWidget *parent)
{
    return new ConsoleView(place.server, place.actions, parent);
}

const QList<Tab> &tabs()
{
    const TabSets ranked = TabSet::Ranked;
    const TabSets unranked = TabSet::UnrankedMaps | TabSet::UnrankedPlaylists;
    static const QList<Tab> all{
        {"playersView", QT_TRANSLATE_NOOP("Tab", "Players"), QT_TRANSLATE_NOOP("Tab", "&Players"), ranked | unranked,
         &makePlayers},
        {"mapsView", QT_TRANSLATE_NOOP("Tab", "Maps"), QT_TRANSLATE_NOOP("Tab", "&Maps"), TabSet::UnrankedMaps,
         &makeMaps},
        {"playlistsView", QT_TRANSLATE_NOOP("Tab", "Playlists"), nullptr, ranked | TabSet::UnrankedPlaylists,
         &makePlaylists},
        {"unrankedSettingsView", QT_TRANSLATE_NOOP("Tab", "Settings"), nullptr, unranked, &makeUnrankedSettings},
        {"rankedSettingsView", QT_TRANSLATE_NOOP("Tab", "Settings"), nullptr, ranked, &makeRankedSettings},
        {"messagesView", QT_TRANSLATE_NOOP("Tab", "Messages"), QT_TRANSLATE_NOOP("Tab", "Mess&ages"), ranked | unranked,
         &makeMessages},
        {"configBuilderView", QT_TRANSLATE_NOOP("Tab", "Config Builder"), QT_TRANSLATE_NOOP("Tab", "&Configuration"),
         unranked, &makeConfigBuilder},
        {"consoleView", QT_TRANSLATE_NOOP("Tab", "Console"), nullptr, ranked | unranked, &makeConsole}};
    return all;
}
