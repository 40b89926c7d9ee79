#include "Controls.h"
#include "Hands.h"
#include "Journey.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>

#include <utility>

void Journey::loadAMap()
{
    const QWidget &maps = showTab("mapsView");
    Hands::click(maps, "mapListView", "Orchard Wall");
    Hands::click(maps, "loadMapButton");
    const auto &currentMap = *control<QLineEdit>(maps, "currentMapField");
    reach("the chosen map is loaded", [&] { return currentMap.text() == "Orchard Wall"; });
    settle();
    takePicture("maps");
    expect(m_server->variable("mapname") == "ward_orchardwall", "the server plays the chosen map");
}

void Journey::buildARotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "addMapButton");
    const QDialog &picker = reachSheet("mapGametypePairPanel");
    for (const auto &[map, gametype] :
         {std::pair("Lantern Row", "Carry the Lantern"), std::pair("Saltworks", "Dock Watch"),
          std::pair("Signal Hill", "Keep the Beacon")}) {
        Hands::choose(picker, "mapsPopupButton", map);
        Hands::choose(picker, "gametypesPopupButton", gametype);
        Hands::click(picker, "addButton");
    }
    takePicture("picker");
    Hands::click(picker, "closeButton");
    auto &table = *control<QAbstractItemView>(maps, "mapRotationPreviewTableView");
    Hands::click(table, Hands::find(table, "Saltworks"));
    QTest::keyClick(&table, Qt::Key_Up, Qt::AltModifier);
    expect(shownTexts(table) == QStringList({"Saltworks", "Lantern Row", "Signal Hill"}),
           "the keyboard moves a row up");
}

void Journey::saveTheRotation()
{
    Hands::click(page("mapsView"), "saveAsButton");
    const QDialog &naming = reachSheet("SaveMapRotationAsWindowController");
    Hands::type(naming, "nameField", "Friday Night");
    takePicture("naming");
    Hands::click(naming, "saveButton");
    settle();
    expect(control<QLabel>(page("mapsView"), "labelCurrentRotation")->text() == "Rotation: Friday Night",
           "the saved rotation is the current one");
}

void Journey::setTheRotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "setBuiltRotationButton");
    settle();
    takePicture("rotation");
    const QString expected = "gametype docks map ward_saltworks gametype carry map ward_lanternrow gametype "
                             "beacon map ward_signalhill";
    expect(m_server->variable("sv_mapRotation").trimmed() == expected, "the server has the rotation");
    // What is changed from now on is asked about when another server is connected to.
    auto &table = *control<QAbstractItemView>(maps, "mapRotationPreviewTableView");
    Hands::click(table, Hands::find(table, "Lantern Row"));
    QTest::keyClick(&table, Qt::Key_Up, Qt::AltModifier);
}

void Journey::addMessages()
{
    const QWidget &messages = showTab("messagesView");
    Hands::click(messages, "addMessageButton");
    QDialog &adding = reachSheet("AddMessageToRotationWindowController");
    for (const char *message :
         {"Welcome aboard. Be kind to newcomers.", "^3Friday night: ^7the harbour maps until ten."}) {
        Hands::type(adding, "messageTextField", message);
        Hands::type(adding, "durationTextField", "1");
        takePicture("adding");
        Hands::click(adding, "addButton");
    }
    QTest::keyClick(&adding, Qt::Key_Escape);
    Hands::click(messages, "saveAsButton");
    const QDialog &naming = reachSheet("SaveMessageRotationAsWindowController");
    Hands::type(naming, "nameField", "House rules");
    Hands::click(naming, "saveButton");
    settle();
    expect(!control<QLabel>(messages, "labelUnsavedChanges")->isVisible(), "the messages are saved");
}

void Journey::playMessages()
{
    Hands::click(page("messagesView"), "buttonStartMessageRotation");
    reach("the last message stays on air", [this] { return text("onAirLabel") == "On air: message 2 of 2, 1 s left"; });
    takePicture("playing");
    const auto &start = *control<QWidget>(window(), "buttonStartMessageRotation");
    reach("playing ends after the last message", [&] { return start.isEnabled(); });
    expect(m_server->commandsSeen().filter("say \"").size() == 2, "the server gets both messages, once each");
}

void Journey::sendAQuickMessage()
{
    const QWidget &messages = page("messagesView");
    auto *field = control<QLineEdit>(messages, "quickMessageTextField");
    Hands::type(field, "Last round in ");
    Hands::click(messages, "colorButton");
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    expect(menu != nullptr, "the colours are shown");
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
        QTest::keyClick(menu, key);
    QTest::keyClicks(field, "five minutes!");
    takePicture("quick-message");
    QTest::keyClick(field, Qt::Key_Return);
    settle();
    expect(m_server->commandsSeen().contains("say \"Last round in ^1five minutes!\""),
           "the server gets the coloured message");
}

void Journey::startAPlaylist()
{
    const QWidget &playlists = showTab("playlistsView");
    auto &table = *control<QAbstractItemView>(playlists, "playlistsTableView");
    Hands::click(table, table.model()->index(2, 1));
    Hands::click(playlists, "startPlaylistButton");
    const QStringList chosen = shownRow(table, 2);
    const auto &current = *control<QLineEdit>(playlists, "currentPlaylistField");
    reach("the chosen playlist is the current one", [&] { return current.text() == chosen.at(1); });
    settle();
    expect(m_playlistServer->variable("playlist") == chosen.first(), "the server plays the playlist");
}

void Journey::excludeAMap()
{
    const QWidget &playlists = page("playlistsView");
    Hands::click(playlists, "addExclusionButton");
    const QDialog &picker = reachSheet("mapGametypePairPanel");
    Hands::choose(picker, "mapsPopupButton", "Paper Mill");
    takePicture("exclusion");
    Hands::click(picker, "addButton");
    Hands::click(picker, "closeButton");
    Hands::click(playlists, "applyExclusionsButton");
    settle();
    takePicture("playlists");
    expect(m_playlistServer->variable("playlist_excludeMap").contains("ward_papermill"), "the server excludes the map");
}
