#include "Hand.h"

#include "ElidingField.h"
#include "FormMainView.h"
#include "Hands.h"
#include "KeyHandlingTableView.h"
#include "MapsView.h"
#include "PlaceholderTable.h"
#include "PlaylistsView.h"
#include "RotationPane.h"

#include <QTest>

bool Hand::refreshMaps()
{
    return goTo(window().mapsView) && press(window().mapsView->refreshCurrentMapButton);
}

bool Hand::changeMap()
{
    MapsView &view = *window().mapsView;
    const QList<QPushButton *> buttons{view.restartMapButton, view.fastRestartMapButton, view.startNextMapButton};
    return goTo(&view) && press(buttons.at(below(3)));
}

bool Hand::loadMap()
{
    MapsView &view = *window().mapsView;
    if (!goTo(&view) || !clickRow(*view.mapListView))
        return false;
    chooseAny(view.gametypePopUpButton);
    return press(view.loadMapButton);
}

bool Hand::addMaps()
{
    return goTo(window().mapsView) && press(window().mapsView->addMapButton);
}

bool Hand::changeRows(RotationPane &pane, int mostRows)
{
    KeyHandlingTableView &table = *pane.tableView;
    if (!clickRow(table))
        return false;
    if (isChance(3))
        clickRow(table, Qt::ControlModifier);
    if (table.model()->rowCount() > mostRows)
        return press(pane.removeAllButton);
    switch (below(5)) {
    case 0:
        return press(pane.removeButton);
    case 1:
        QTest::keyClick(&table, Qt::Key_Z, Qt::ControlModifier);
        return true;
    case 2:
        QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(&table, Qt::Key_V, Qt::ControlModifier);
        return true;
    default:
        QTest::keyClick(&table, isChance(2) ? Qt::Key_Up : Qt::Key_Down, Qt::AltModifier);
        return true;
    }
}

bool Hand::changeMapRows()
{
    return goTo(window().mapsView) && changeRows(*window().mapsView->rotationPane, 40);
}

bool Hand::keepRotation(RotationPane &pane, bool mayClear)
{
    switch (below(mayClear ? 6 : 4)) {
    case 0:
        return press(pane.openButton);
    case 1:
    case 2:
        return press(pane.saveButton);
    case 3:
        return press(pane.saveAsButton);
    case 4:
        return press(pane.deleteButton);
    default:
        return press(pane.newButton);
    }
}

bool Hand::keepMapRotation()
{
    return goTo(window().mapsView) && keepRotation(*window().mapsView->rotationPane, true);
}

bool Hand::setRotation()
{
    MapsView &view = *window().mapsView;
    return goTo(&view) && view.rotationPane->tableView->model()->rowCount() > 0 && press(view.setBuiltRotationButton);
}

bool Hand::copyRotation()
{
    return goTo(window().mapsView) && press(window().mapsView->copyToBuilderButton);
}

bool Hand::startPlaylist()
{
    PlaylistsView &view = *window().playlistsView;
    return goTo(&view) && clickRow(*view.playlistsTableView) && press(view.startPlaylistButton);
}

bool Hand::changeExclusions()
{
    PlaylistsView &view = *window().playlistsView;
    if (!goTo(&view))
        return false;
    switch (below(3)) {
    case 0:
        return press(view.addExclusionButton);
    case 1:
        return clickRow(*view.exclusionsTableView) && press(view.removeExclusionButton);
    default:
        return press(view.applyExclusionsButton);
    }
}
