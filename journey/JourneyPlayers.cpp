#include "Journey.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "Hands.h"

#include <QDialog>

#include <algorithm>

/// How a player is recognised in a row of the table: his name and his address.
static QStringList playerOf(const QStringList &row)
{
    return {row.value(1), row.value(3)};
}

bool Journey::kickAPlayer()
{
    const QWidget &players = page("playersView");
    auto &table = *control<QAbstractItemView>(players, "playersTableView");
    Hands::click(table, table.model()->index(1, 0));
    const QModelIndexList chosen = table.selectionModel()->selectedRows();
    if (!expect(chosen.size() == 1, QStringLiteral("a player can be selected")))
        return false;
    const QStringList kicked = shownRow(table, chosen.first().row());
    Hands::click(players, "kickPlayerButton");
    if (!expect(waitUntilIdle(), QStringLiteral("the kick is carried out")))
        return false;
    const QString command = QStringLiteral("clientkick ") + kicked.first();
    if (!expect(m_server.commandsSeen().contains(command), QStringLiteral("the kick reaches the server")))
        return false;
    Hands::click(players, "refreshPlayersButton");
    const auto isGone = [&] {
        const QList<QStringList> rows = shownRows(table);
        return std::none_of(rows.begin(), rows.end(),
                            [&](const QStringList &row) { return playerOf(row) == playerOf(kicked); });
    };
    if (!expect(waitUntil(isGone), QStringLiteral("the kicked player is gone from the list")))
        return false;
    takePicture(QStringLiteral("kicked"));
    return true;
}

bool Journey::messageAPlayer()
{
    const QWidget &players = page("playersView");
    auto &table = *control<QAbstractItemView>(players, "playersTableView");
    Hands::click(table, table.model()->index(0, 0));
    Hands::click(players, "messagePlayerButton");
    const QDialog *panel = waitForSheet(QStringLiteral("playerSendMessagePanel"));
    if (panel == nullptr)
        return false;
    Hands::type(*panel, "messageTextField", QStringLiteral("Welcome! The rules are on our page."));
    takePicture(QStringLiteral("message"));
    Hands::click(*panel, "sendButton");
    if (!expect(waitUntilIdle(), QStringLiteral("the message is sent")))
        return false;
    const QString command = m_application.server().console().commandHistory().last();
    return expect(command.startsWith(QLatin1String("tell ")) && m_server.commandsSeen().contains(command),
                  QStringLiteral("the message goes to the player"));
}
