#include "Journey.h"

#include "Controls.h"
#include "FormMainView.h"
#include "Hands.h"
#include "RealPointer.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

static QStringList plannedMaps()
{
    return {"Saltworks", "Lantern Row", "Signal Hill"};
}

void Journey::loadAMap()
{
    const QWidget &maps = showTab("mapsView");
    const auto &currentMap = *control<QLineEdit>(maps, "currentMapField");
    const auto &rotation = *control<QAbstractItemView>(maps, "mapServerRotationTableView");
    expect(maps.isVisible() && !currentMap.text().isEmpty() && rotation.model()->rowCount() > 0,
           "map and rotation are shown");
    const QString name = "Orchard Wall";
    auto &list = *control<QAbstractItemView>(maps, "mapListView");
    Hands::click(list, Hands::find(list, name));
    Hands::click(maps, "loadMapButton");
    expect(waitUntil([&] { return currentMap.text() == name; }) && waitUntilIdle(), "the chosen map is loaded");
    takePicture("maps");
    expect(m_server.variable("mapname") == "ward_orchardwall", "the server plays the chosen map");
}

static QAbstractItemView &builderOf(const QWidget &maps)
{
    return *control<QAbstractItemView>(maps, "mapRotationPreviewTableView");
}

void Journey::addPair(const QDialog &picker, const QString &map, const QString &gametype)
{
    Hands::choose(picker, "mapsPopupButton", map);
    Hands::choose(picker, "gametypesPopupButton", gametype);
    Hands::click(picker, "addButton");
    expect(shownTexts(builderOf(page("mapsView"))).contains(map), "the picked map is added");
}

void Journey::buildARotation()
{
    const QWidget &maps = page("mapsView");
    QAbstractItemView &table = builderOf(maps);
    Hands::click(maps, "addMapButton");
    const QDialog &picker = waitForSheet("mapGametypePairPanel");
    addPair(picker, "Lantern Row", "Carry the Lantern");
    addPair(picker, "Saltworks", "Dock Watch");
    addPair(picker, "Signal Hill", "Keep the Beacon");
    const auto &removeAll = *control<QPushButton>(maps, "removeAllButton");
    expect(waitUntil([&] { return removeAll.isEnabled(); }), "what was added can be removed");
    takePicture("picker");
    Hands::click(picker, "closeButton");
    Hands::click(table, Hands::find(table, "Saltworks"));
    QTest::keyClick(&table, Qt::Key_Up, Qt::AltModifier);
    expect(shownTexts(table) == plannedMaps(), "the keyboard moves a row up");
}

void Journey::saveTheRotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "saveAsButton");
    const QDialog &naming = waitForSheet("SaveMapRotationAsWindowController");
    Hands::type(naming, "nameField", "Friday Night");
    takePicture("naming");
    Hands::click(naming, "saveButton");
    expect(waitUntilIdle(), "the rotation is saved");
    expect(control<QLabel>(maps, "labelCurrentRotation")->text() == "Rotation: Friday Night" &&
               control<QLabel>(maps, "labelUnsavedChanges")->isHidden(),
           "the saved rotation is the current one");
}

void Journey::setTheRotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "setBuiltRotationButton");
    expect(waitUntilIdle(), "the rotation is set");
    takePicture("rotation");
    const QString expected = "gametype docks map ward_saltworks gametype carry map ward_lanternrow gametype "
                             "beacon map ward_signalhill";
    expect(m_server.variable("sv_mapRotation").trimmed() == expected, "the server has the rotation");
    const auto &rotation = *control<QAbstractItemView>(maps, "mapServerRotationTableView");
    expect(shownTexts(rotation) == plannedMaps() &&
               control<QLineEdit>(maps, "currentMapField")->text() == plannedMaps().first(),
           "the window shows the new rotation and its first map");
}

void Journey::copyTheRotationBack()
{
    const QWidget &maps = page("mapsView");
    const QAbstractItemView &builder = builderOf(maps);
    Hands::click(maps, "newButton");
    const QDialog &naming = waitForSheet("NewMapRotationWindowController");
    Hands::type(naming, "nameField", "From the server");
    Hands::click(naming, "addButton");
    expect(waitUntilIdle() && builder.model()->rowCount() == 0, "a new rotation begins empty");
    Hands::click(maps, "copyToBuilderButton");
    const auto &unsaved = *control<QLabel>(maps, "labelUnsavedChanges");
    const auto isCopied = [&] {
        return shownTexts(builder) == plannedMaps() && unsaved.isVisible();
    };
    expect(waitUntil(isCopied) && waitUntilIdle(), "the server's rotation is copied to the builder, and not saved yet");
    takePicture("copied");
}

static QPoint placeIn(const QAbstractItemView &table, int row)
{
    const QRect cell = table.visualRect(table.model()->index(row, 0));
    return cell.topLeft() + QPoint(cell.width() / 4, cell.height() / 4);
}

void Journey::dragARow()
{
    if (!RealPointer::isThere()) {
        qInfo("journey: \"%s\" has no pointer to drag a row with: that step is left out",
              qPrintable(QGuiApplication::platformName()));
        return;
    }
    auto *table = control<QAbstractItemView>(window(), "mapRotationPreviewTableView");
    const QList<QStringList> before = shownRows(*table);
    const int last = static_cast<int>(before.size()) - 1;
    QList<QStringList> expected = before;
    expected.move(last, 0);
    expect(RealPointer().drag(*table, placeIn(*table, last), placeIn(*table, 0)), "the pointer drags a row");
    takePicture("dragged");
    expect(shownRows(*table) == expected, "the dragged row is on top, and no cell has lost its text");
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    expect(shownRows(*table) == before, "one undo takes the drag back");
}

void Journey::startAPlaylist()
{
    const QWidget &playlists = showTab("playlistsView");
    auto &table = *control<QAbstractItemView>(playlists, "playlistsTableView");
    const QModelIndex chosen = table.model()->index(2, 1);
    const QString name = chosen.data().toString();
    const QString number = chosen.siblingAtColumn(0).data().toString();
    Hands::click(table, chosen);
    Hands::click(playlists, "startPlaylistButton");
    const auto &current = *control<QLineEdit>(playlists, "currentPlaylistField");
    expect(waitUntil([&] { return current.text() == name; }) && waitUntilIdle(),
           "the chosen playlist is the current one");
    expect(!name.isEmpty() && m_playlistServer.variable("playlist") == number, "the server plays the playlist");
}

void Journey::excludeAMap()
{
    const QWidget &playlists = page("playlistsView");
    Hands::click(playlists, "addExclusionButton");
    const QDialog &picker = waitForSheet("mapGametypePairPanel");
    Hands::choose(picker, "mapsPopupButton", "Paper Mill");
    takePicture("exclusion");
    Hands::click(picker, "addButton");
    Hands::click(picker, "closeButton");
    const auto &exclusions = *control<QAbstractItemView>(playlists, "exclusionsTableView");
    const auto &unsent = *control<QLabel>(playlists, "unsentExclusionsLabel");
    expect(Hands::find(exclusions, "Paper Mill").isValid() && !unsent.text().isEmpty(),
           "the exclusion is listed as not sent");
    Hands::click(playlists, "applyExclusionsButton");
    expect(waitUntilIdle() && unsent.text().isEmpty(), "the exclusions are applied");
    takePicture("playlists");
    expect(m_playlistServer.variable("playlist_excludeMap").contains("ward_papermill"), "the server excludes the map");
}
