#include "Journey.h"

#include "Controls.h"
#include "Hands.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

static QStringList plannedMaps()
{
    return {QStringLiteral("Saltworks"), QStringLiteral("Lantern Row"), QStringLiteral("Signal Hill")};
}

bool Journey::loadAMap()
{
    const QWidget &maps = showTab("mapsView");
    const auto &currentMap = *control<QLineEdit>(maps, "currentMapField");
    const auto &rotation = *control<QAbstractItemView>(maps, "mapServerRotationTableView");
    if (!expect(maps.isVisible() && !currentMap.text().isEmpty() && rotation.model()->rowCount() > 0,
                QStringLiteral("map and rotation are shown")))
        return false;
    const QString name = QStringLiteral("Orchard Wall");
    auto &list = *control<QAbstractItemView>(maps, "mapListView");
    Hands::click(list, Hands::find(list, name));
    Hands::click(maps, "loadMapButton");
    if (!expect(waitUntil([&] { return currentMap.text() == name; }) && waitUntilIdle(),
                QStringLiteral("the chosen map is loaded")))
        return false;
    takePicture(QStringLiteral("maps"));
    return expect(m_server.variable(QStringLiteral("mapname")) == QLatin1String("mp_orchardwall"),
                  QStringLiteral("the server plays the chosen map"));
}

static QAbstractItemView &builderOf(const QWidget &maps)
{
    return *control<QAbstractItemView>(maps, "mapRotationPreviewTableView");
}

bool Journey::addPair(const QDialog &picker, const QString &map, const QString &gametype)
{
    Hands::choose(picker, "mapsPopupButton", map);
    Hands::choose(picker, "gametypesPopupButton", gametype);
    Hands::click(picker, "addButton");
    return expect(shownTexts(builderOf(page("mapsView"))).contains(map), QStringLiteral("the picked map is added"));
}

bool Journey::buildARotation()
{
    const QWidget &maps = page("mapsView");
    QAbstractItemView &table = builderOf(maps);
    Hands::click(maps, "addMapButton");
    const QDialog *picker = waitForSheet(QStringLiteral("mapGametypePairPanel"));
    if (picker == nullptr)
        return false;
    if (!addPair(*picker, QStringLiteral("Lantern Row"), QStringLiteral("Capture the Flag")) ||
        !addPair(*picker, QStringLiteral("Saltworks"), QStringLiteral("Domination")) ||
        !addPair(*picker, QStringLiteral("Signal Hill"), QStringLiteral("King of the Hill")))
        return false;
    const auto &removeAll = *control<QPushButton>(maps, "removeAllButton");
    if (!expect(waitUntil([&] { return removeAll.isEnabled(); }), QStringLiteral("what was added can be removed")))
        return false;
    takePicture(QStringLiteral("picker"));
    Hands::click(*picker, "closeButton");
    Hands::click(table, Hands::find(table, QStringLiteral("Saltworks")));
    QTest::keyClick(&table, Qt::Key_Up, Qt::AltModifier);
    return expect(shownTexts(table) == plannedMaps(), QStringLiteral("the keyboard moves a row up"));
}

bool Journey::saveTheRotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "saveAsButton");
    const QDialog *naming = waitForSheet(QStringLiteral("SaveMapRotationAsWindowController"));
    if (naming == nullptr)
        return false;
    Hands::type(*naming, "nameField", QStringLiteral("Friday Night"));
    takePicture(QStringLiteral("naming"));
    Hands::click(*naming, "saveButton");
    if (!expect(waitUntilIdle(), QStringLiteral("the rotation is saved")))
        return false;
    return expect(control<QLabel>(maps, "labelCurrentRotation")->text() == QLatin1String("Rotation: Friday Night") &&
                      control<QLabel>(maps, "labelUnsavedChanges")->isHidden(),
                  QStringLiteral("the saved rotation is the current one"));
}

bool Journey::setTheRotation()
{
    const QWidget &maps = page("mapsView");
    Hands::click(maps, "setBuiltRotationButton");
    if (!expect(waitUntilIdle(), QStringLiteral("the rotation is set")))
        return false;
    takePicture(QStringLiteral("rotation"));
    const QString expected = QStringLiteral("gametype dom map mp_saltworks gametype ctf map mp_lanternrow gametype "
                                            "koth map mp_signalhill");
    if (!expect(m_server.variable(QStringLiteral("sv_mapRotation")).trimmed() == expected,
                QStringLiteral("the server has the rotation")))
        return false;
    const auto &rotation = *control<QAbstractItemView>(maps, "mapServerRotationTableView");
    return expect(shownTexts(rotation) == plannedMaps() &&
                      control<QLineEdit>(maps, "currentMapField")->text() == plannedMaps().first(),
                  QStringLiteral("the window shows the new rotation and its first map"));
}

bool Journey::copyTheRotationBack()
{
    const QWidget &maps = page("mapsView");
    const QAbstractItemView &builder = builderOf(maps);
    Hands::click(maps, "newButton");
    const QDialog *naming = waitForSheet(QStringLiteral("NewMapRotationWindowController"));
    if (naming == nullptr)
        return false;
    Hands::type(*naming, "nameField", QStringLiteral("From the server"));
    Hands::click(*naming, "addButton");
    if (!expect(waitUntilIdle() && builder.model()->rowCount() == 0, QStringLiteral("a new rotation begins empty")))
        return false;
    Hands::click(maps, "copyToBuilderButton");
    const auto &unsaved = *control<QLabel>(maps, "labelUnsavedChanges");
    const auto isCopied = [&] {
        return shownTexts(builder) == plannedMaps() && unsaved.isVisible();
    };
    if (!expect(waitUntil(isCopied) && waitUntilIdle(),
                QStringLiteral("the server's rotation is copied to the builder, and not saved yet")))
        return false;
    takePicture(QStringLiteral("copied"));
    return true;
}
