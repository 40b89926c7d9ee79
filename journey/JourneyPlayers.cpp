#include "Journey.h"

#include "AppDelegate.h"
#include "FormMainView.h"
#include "Hands.h"
#include "PlaceholderTable.h"
#include "PlayerSendMessage.h"
#include "PlayersView.h"

#include <QTest>

#include <algorithm>

bool Journey::kickAPlayer()
{
    PlayersView &view = *window().playersView;
    Hands::click(*view.playersTableView, view.playersTableView->model()->index(1, 0));
    const QList<PlayerRow> chosen = view.playersController->selectedObjects();
    if (!expect(chosen.size() == 1, QStringLiteral("a player can be selected")))
        return false;
    Hands::click(view.kickPlayerButton);
    if (!expect(waitUntilIdle(), QStringLiteral("the kick is carried out")))
        return false;
    const QString command = QStringLiteral("clientkick ") + chosen.first().identifier;
    if (!expect(m_server.commandsSeen().contains(command), QStringLiteral("the kick reaches the server")))
        return false;
    Hands::click(view.refreshPlayersButton);
    const auto isGone = [&] {
        const QList<PlayerRow> &players = view.playersController->content();
        return std::none_of(players.begin(), players.end(),
                            [&](const PlayerRow &player) { return playerKey(player) == playerKey(chosen.first()); });
    };
    if (!expect(waitUntil(isGone), QStringLiteral("the kicked player is gone from the list")))
        return false;
    takePicture(QStringLiteral("kicked"));
    return true;
}

bool Journey::messageAPlayer()
{
    PlayersView &view = *window().playersView;
    Hands::click(*view.playersTableView, view.playersTableView->model()->index(0, 0));
    Hands::click(view.messagePlayerButton);
    PlayerSendMessage *panel = view.playerSendMessagePanel;
    if (!waitForSheet(panel))
        return false;
    Hands::type(panel->messageTextField, QStringLiteral("Welcome! The rules are on our page."));
    takePicture(QStringLiteral("message"));
    Hands::click(panel->sendButton);
    if (!expect(waitUntilIdle(), QStringLiteral("the message is sent")))
        return false;
    const QString command = m_application.server().commandHistory().last();
    return expect(command.startsWith(QLatin1String("tell ")) && m_server.commandsSeen().contains(command),
                  QStringLiteral("the message goes to the player"));
}
