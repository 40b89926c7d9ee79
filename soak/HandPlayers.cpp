#include "Hand.h"

#include "Controls.h"
#include "Hands.h"

#include <QHeaderView>
#include <QTableView>
#include <QTest>

bool Hand::choosePlayers()
{
    QAbstractItemView &players = table("playersView", "playersTableView");
    if (!goTo("playersView") || !clickRow(players))
        return false;
    for (int i = below(3); i > 0; --i)
        clickRow(players, Qt::ControlModifier);
    return true;
}

bool Hand::refreshPlayers()
{
    return pressOn("playersView", "refreshPlayersButton");
}

bool Hand::removePlayers()
{
    return choosePlayers() && pressOn("playersView", isChance(2) ? "kickPlayerButton" : "tempBanPlayerButton");
}

bool Hand::banPlayer()
{
    return isChance(3) && goTo("playersView") && clickRow(table("playersView", "playersTableView")) &&
           pressOn("playersView", "banPlayerButton");
}

bool Hand::writeToPlayers()
{
    return choosePlayers() && pressOn("playersView", "messagePlayerButton");
}

bool Hand::kickAll()
{
    return pressOn("playersView", "kickAllButton");
}

bool Hand::savePlayers()
{
    return pressOn("playersView", "savePlayerListButton");
}

bool Hand::filterPlayers()
{
    if (!goTo("playersView"))
        return false;
    Hands::type(page("playersView"), "playerFilterField", isChance(2) ? QString() : QString(QChar('a' + below(26))));
    return true;
}

bool Hand::sortPlayers()
{
    if (!goTo("playersView"))
        return false;
    QHeaderView &header = *control<QTableView>(page("playersView"), "playersTableView")->horizontalHeader();
    const int section = below(header.count());
    const int middle = header.sectionViewportPosition(section) + header.sectionSize(section) / 2;
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(middle, header.height() / 2));
    return true;
}
