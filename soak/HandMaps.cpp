#include "Hand.h"

#include "Controls.h"

#include <QComboBox>
#include <QTest>

QAbstractItemView &Hand::builderTable() const
{
    return table("mapsView", "mapRotationPreviewTableView");
}

bool Hand::refreshMaps()
{
    return pressOn("mapsView", "refreshCurrentMapButton");
}

bool Hand::changeMap()
{
    static const QList<const char *> buttons{"restartMapButton", "fastRestartMapButton", "startNextMapButton"};
    return pressOn("mapsView", buttons.at(below(3)));
}

bool Hand::loadMap()
{
    if (!goTo("mapsView") || !clickRow(table("mapsView", "mapListView")))
        return false;
    chooseAny(control<QComboBox>(page("mapsView"), "gametypePopUpButton"));
    return pressOn("mapsView", "loadMapButton");
}

bool Hand::addMaps()
{
    return pressOn("mapsView", "addMapButton");
}

bool Hand::changeRows(const char *pageName, QAbstractItemView &rows, int mostRows)
{
    if (!clickRow(rows))
        return false;
    if (isChance(3))
        clickRow(rows, Qt::ControlModifier);
    if (rows.model()->rowCount() > mostRows)
        return pressOn(pageName, "removeAllButton");
    switch (below(5)) {
    case 0:
        return pressOn(pageName, "removeButton");
    case 1:
        QTest::keyClick(&rows, Qt::Key_Z, Qt::ControlModifier);
        return true;
    case 2:
        QTest::keyClick(&rows, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(&rows, Qt::Key_V, Qt::ControlModifier);
        return true;
    default:
        QTest::keyClick(&rows, isChance(2) ? Qt::Key_Up : Qt::Key_Down, Qt::AltModifier);
        return true;
    }
}

bool Hand::changeMapRows()
{
    return goTo("mapsView") && changeRows("mapsView", builderTable(), 40);
}

bool Hand::keepRotation(const char *pageName, bool mayClear)
{
    switch (below(mayClear ? 6 : 4)) {
    case 0:
        return pressOn(pageName, "openButton");
    case 1:
    case 2:
        return pressOn(pageName, "saveButton");
    case 3:
        return pressOn(pageName, "saveAsButton");
    case 4:
        return pressOn(pageName, "deleteButton");
    default:
        return pressOn(pageName, "newButton");
    }
}

bool Hand::keepMapRotation()
{
    return keepRotation("mapsView", true);
}

bool Hand::setRotation()
{
    return builderTable().model()->rowCount() > 0 && pressOn("mapsView", "setBuiltRotationButton");
}

bool Hand::copyRotation()
{
    return pressOn("mapsView", "copyToBuilderButton");
}

bool Hand::startPlaylist()
{
    return goTo("playlistsView") && clickRow(table("playlistsView", "playlistsTableView")) &&
           pressOn("playlistsView", "startPlaylistButton");
}

bool Hand::changeExclusions()
{
    if (!goTo("playlistsView"))
        return false;
    switch (below(3)) {
    case 0:
        return pressOn("playlistsView", "addExclusionButton");
    case 1:
        return clickRow(table("playlistsView", "exclusionsTableView")) &&
               pressOn("playlistsView", "removeExclusionButton");
    default:
        return pressOn("playlistsView", "applyExclusionsButton");
    }
}
