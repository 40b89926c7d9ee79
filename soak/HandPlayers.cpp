#include "Hand.h"

#include "FormMainView.h"
#include "Hands.h"
#include "PlaceholderTable.h"
#include "PlayersView.h"

#include <QHeaderView>
#include <QTest>

bool Hand::choosePlayers()
{
    PlaceholderTable &table = *window().playersView->playersTableView;
    if (!goTo(window().playersView) || !clickRow(table))
        return false;
    for (int i = below(3); i > 0; --i)
        clickRow(table, Qt::ControlModifier);
    return true;
}

bool Hand::refreshPlayers()
{
    return goTo(window().playersView) && press(window().playersView->refreshPlayersButton);
}

bool Hand::removePlayers()
{
    PlayersView &view = *window().playersView;
    return choosePlayers() && press(isChance(2) ? view.kickPlayerButton : view.tempBanPlayerButton);
}

bool Hand::banPlayer()
{
    PlayersView &view = *window().playersView;
    return isChance(3) && goTo(&view) && clickRow(*view.playersTableView) && press(view.banPlayerButton);
}

bool Hand::writeToPlayers()
{
    return choosePlayers() && press(window().playersView->messagePlayerButton);
}

bool Hand::kickAll()
{
    return goTo(window().playersView) && press(window().playersView->kickAllButton);
}

bool Hand::savePlayers()
{
    return goTo(window().playersView) && press(window().playersView->savePlayerListButton);
}

bool Hand::filterPlayers()
{
    if (!goTo(window().playersView))
        return false;
    Hands::type(window().playersView->playerFilterField, isChance(2) ? QString() : QString(QChar('a' + below(26))));
    return true;
}

bool Hand::sortPlayers()
{
    if (!goTo(window().playersView))
        return false;
    QHeaderView &header = *window().playersView->playersTableView->horizontalHeader();
    const int section = below(header.count());
    const int middle = header.sectionViewportPosition(section) + header.sectionSize(section) / 2;
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, QPoint(middle, header.height() / 2));
    return true;
}
