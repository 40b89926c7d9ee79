#include "Journey.h"

#include "ElidingField.h"
#include "ElidingLabel.h"
#include "FormMainView.h"
#include "Hands.h"
#include "KeyHandlingTableView.h"
#include "MapGametypePairWindowController.h"
#include "MapsView.h"
#include "NewRotationWindowController.h"
#include "PlaceholderTable.h"
#include "RotationPane.h"
#include "SaveRotationAsWindowController.h"

#include <QTest>

static QStringList mapsOf(const QAbstractItemView &table)
{
    QStringList maps;
    for (int row = 0; row < table.model()->rowCount(); ++row)
        maps.append(table.model()->index(row, 0).data().toString());
    return maps;
}

static QStringList plannedMaps()
{
    return {QStringLiteral("Saltworks"), QStringLiteral("Lantern Row"), QStringLiteral("Signal Hill")};
}

bool Journey::loadAMap()
{
    MapsView &view = *window().mapsView;
    Hands::showTab(*window().tabControlMain, &view);
    if (!expect(view.isVisible() && !view.currentMapField->text().isEmpty() &&
                    view.mapServerRotationController->rowCount() > 0,
                QStringLiteral("map and rotation are shown")))
        return false;
    const QString name = QStringLiteral("Orchard Wall");
    Hands::click(*view.mapListView, Hands::find(*view.mapListView, name));
    Hands::click(view.loadMapButton);
    if (!expect(waitUntil([&] { return view.currentMapField->text() == name; }) && waitUntilIdle(),
                QStringLiteral("the chosen map is loaded")))
        return false;
    takePicture(QStringLiteral("maps"));
    return expect(m_server.variable(QStringLiteral("mapname")) == QLatin1String("mp_orchardwall"),
                  QStringLiteral("the server plays the chosen map"));
}

bool Journey::addPair(const QString &map, const QString &gametype)
{
    MapGametypePairWindowController &picker = *window().mapsView->mapGametypePairWindowController;
    Hands::choose(picker.mapsPopupButton, map);
    Hands::choose(picker.gametypesPopupButton, gametype);
    Hands::click(picker.addButton);
    return expect(mapsOf(*window().mapsView->rotationPane->tableView).contains(map),
                  QStringLiteral("the picked map is added"));
}

bool Journey::buildARotation()
{
    MapsView &view = *window().mapsView;
    KeyHandlingTableView *table = view.rotationPane->tableView;
    Hands::click(view.addMapButton);
    if (!waitForSheet(view.mapGametypePairWindowController))
        return false;
    if (!addPair(QStringLiteral("Lantern Row"), QStringLiteral("Capture the Flag")) ||
        !addPair(QStringLiteral("Saltworks"), QStringLiteral("Domination")) ||
        !addPair(QStringLiteral("Signal Hill"), QStringLiteral("King of the Hill")))
        return false;
    if (!expect(waitUntil([&] { return view.rotationPane->removeAllButton->isEnabled(); }),
                QStringLiteral("what was added can be removed")))
        return false;
    takePicture(QStringLiteral("picker"));
    Hands::click(view.mapGametypePairWindowController->closeButton);
    Hands::click(*table, Hands::find(*table, QStringLiteral("Saltworks")));
    QTest::keyClick(table, Qt::Key_Up, Qt::AltModifier);
    return expect(mapsOf(*table) == plannedMaps(), QStringLiteral("the keyboard moves a row up"));
}

bool Journey::saveTheRotation()
{
    RotationPane &pane = *window().mapsView->rotationPane;
    Hands::click(pane.saveAsButton);
    auto *sheet = window().findChild<SaveRotationAsWindowController *>();
    if (!waitForSheet(sheet))
        return false;
    Hands::type(sheet->nameField, QStringLiteral("Friday Night"));
    takePicture(QStringLiteral("naming"));
    Hands::click(sheet->saveButton);
    if (!expect(waitUntilIdle(), QStringLiteral("the rotation is saved")))
        return false;
    return expect(pane.labelCurrentRotation->text() == QLatin1String("Rotation: Friday Night") &&
                      pane.labelUnsavedChanges->isHidden(),
                  QStringLiteral("the saved rotation is the current one"));
}

bool Journey::setTheRotation()
{
    MapsView &view = *window().mapsView;
    Hands::click(view.setBuiltRotationButton);
    if (!expect(waitUntilIdle(), QStringLiteral("the rotation is set")))
        return false;
    takePicture(QStringLiteral("rotation"));
    const QString expected = QStringLiteral("gametype dom map mp_saltworks gametype ctf map mp_lanternrow gametype "
                                            "koth map mp_signalhill");
    if (!expect(m_server.variable(QStringLiteral("sv_mapRotation")).trimmed() == expected,
                QStringLiteral("the server has the rotation")))
        return false;
    return expect(mapsOf(*view.mapServerRotationTableView) == plannedMaps() &&
                      view.currentMapField->text() == plannedMaps().first(),
                  QStringLiteral("the window shows the new rotation and its first map"));
}

bool Journey::copyTheRotationBack()
{
    MapsView &view = *window().mapsView;
    RotationPane &pane = *view.rotationPane;
    Hands::click(pane.newButton);
    auto *sheet = window().findChild<NewRotationWindowController *>();
    if (!waitForSheet(sheet))
        return false;
    Hands::type(sheet->nameField, QStringLiteral("From the server"));
    Hands::click(sheet->addButton);
    if (!expect(waitUntilIdle() && pane.tableView->model()->rowCount() == 0,
                QStringLiteral("a new rotation begins empty")))
        return false;
    Hands::click(view.copyToBuilderButton);
    const auto isCopied = [&] {
        return mapsOf(*pane.tableView) == plannedMaps() && pane.labelUnsavedChanges->isVisible();
    };
    if (!expect(waitUntil(isCopied) && waitUntilIdle(),
                QStringLiteral("the server's rotation is copied to the builder, and not saved yet")))
        return false;
    takePicture(QStringLiteral("copied"));
    return true;
}
