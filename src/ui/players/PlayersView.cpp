#include "PlayersView.h"

#include "Alerts.h"
#include "KelServer.h"
#include "PlaceholderTable.h"
#include "PlayerListFile.h"
#include "PlayerSendMessage.h"
#include "Preferences.h"
#include "ReplaceQuestion.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

using namespace std::chrono_literals;

static constexpr std::chrono::seconds noRefresh{-1};

static bool isSpaceOrNewline(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\n');
}

static QString withoutOuterBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && isSpaceOrNewline(text.at(first)))
        ++first;
    while (end > first && isSpaceOrNewline(text.at(end - 1)))
        --end;
    return text.mid(first, end - first);
}

static QString failureLine(const QString &name, const QString &reason)
{
    return QStringLiteral("\n  %1 (%2)").arg(name, reason);
}

PlayersView::~PlayersView() = default;

void PlayersView::forgetPlayers()
{
    m_isListFetched = false;
    playersController->mergeContent({});
    updatePlaceholder();
}

bool PlayersView::isRefreshDue() const
{
    return m_server.isConnected() && m_selectedTabLabel == tabLabel(TabItem::Players);
}

void PlayersView::refreshPlayersButtonPressed()
{
    // One that waits for its turn will fetch what this one would.
    if (m_isRefreshWaiting || !isRefreshDue())
        return;
    m_isRefreshWaiting = true;
    m_actions.start(refresh());
}

QCoro::Task<> PlayersView::refresh()
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    m_isRefreshWaiting = false;
    if (!turn)
        co_return;
    co_await updatePlayerList();
}

QCoro::Task<> PlayersView::updatePlayerList()
{
    if (!isRefreshDue())
        co_return;
    setupAutoupdatePlayerTimer();
    const QString line = QStringLiteral("teamstatus");
    const Reply reply = co_await m_server.sendCommand(line);
    if (!reply.isSuccess())
        co_return;
    m_isListFetched = true;
    playersController->mergeContent(parsePlayerList(reply.text));
    updatePlaceholder();
}

void PlayersView::setupAutoupdatePlayerTimer()
{
    autoupdatePlayerTimer.stop();
    if (!m_preferences.boolValue(QStringLiteral("autoUpdatePlayers")))
        return;
    const int seconds = m_preferences.intValue(QStringLiteral("autoUpdatePlayersTime"),
                                               autoUpdatePlayersTime->minimum(), autoUpdatePlayersTime->maximum());
    autoupdatePlayerTimer.start(std::chrono::seconds(seconds));
}

void PlayersView::autoupdatePlayerChanged()
{
    m_preferences.setValue(QStringLiteral("autoUpdatePlayers"), autoUpdatePlayers->isChecked());
    setupAutoupdatePlayerTimer();
}

void PlayersView::autoupdatePlayerTimeChanged()
{
    m_preferences.setValue(QStringLiteral("autoUpdatePlayersTime"), autoUpdatePlayersTime->value());
    setupAutoupdatePlayerTimer();
}

void PlayersView::refreshLater(std::chrono::seconds delay)
{
    QTimer::singleShot(delay, this, &PlayersView::refreshPlayersButtonPressed);
}

void PlayersView::kickPlayerButtonPressed()
{
    m_actions.start(command(QStringLiteral("clientkick"), playersController->selectedObjects(), {}, 5s));
}

void PlayersView::banPlayerButtonPressed()
{
    m_actions.start(command(QStringLiteral("banclient"), playersController->selectedObjects(), {}, 5s));
}

void PlayersView::tempBanPlayerButtonPressed()
{
    // Sooner than after a kick: the administrator watches for the player's return.
    m_actions.start(command(QStringLiteral("tempbanclient"), playersController->selectedObjects(), {}, 1s));
}

void PlayersView::messagePlayerButtonPressed()
{
    m_recipients = playersController->selectedObjects();
    QStringList names;
    for (const PlayerRow &player : std::as_const(m_recipients))
        names.append(player.name);
    playerSendMessagePanel->reset();
    playerSendMessagePanel->setRecipients(names);
    playerSendMessagePanel->open();
}

void PlayersView::sendMessagePanelDidEnd()
{
    const QString message = playerSendMessagePanel->messageString();
    if (message.isEmpty())
        return;
    // The list may have been fetched anew meanwhile: numbers go to others when players leave.
    QHash<QString, PlayerRow> present;
    for (const PlayerRow &player : playersController->content())
        present.insert(playerKey(player), player);
    QList<PlayerRow> chosen;
    QString failures;
    for (const PlayerRow &player : std::as_const(m_recipients)) {
        const auto found = present.constFind(playerKey(player));
        if (found != present.constEnd())
            chosen.append(*found);
        else
            failures += failureLine(player.name, tr("has left the server"));
    }
    m_actions.start(command(QStringLiteral("tell"), std::move(chosen), message, noRefresh, failures));
}

QCoro::Task<> PlayersView::command(QString word, QList<PlayerRow> chosen, QString argument,
                                   std::chrono::seconds refreshAfter, QString failures)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (!turn)
        co_return;
    co_await sendCommandToSelectedPlayers(word, chosen, argument, failures);
    if (turn && refreshAfter != noRefresh)
        refreshLater(refreshAfter);
}

QCoro::Task<> PlayersView::sendCommandToSelectedPlayers(QString word, QList<PlayerRow> chosen, QString optionalArgument,
                                                        QString failures)
{
    for (const PlayerRow &player : std::as_const(chosen)) {
        QString line = word + QLatin1Char(' ') + player.identifier;
        if (!optionalArgument.isEmpty())
            line += QLatin1Char(' ') + optionalArgument;
        const Reply reply = co_await m_server.sendCommand(line);
        if (reply.isCancelled)
            co_return;
        if (!reply.isSuccess() || reply.text.contains(QLatin1String("is not active")))
            failures += failureLine(player.name, withoutOuterBlanks(reply.text));
    }
    if (failures.isEmpty())
        co_return;
    const QString text = tr("The following player(s) failed to process the '%1' command: ").arg(word) + failures;
    co_await m_alerts.run(tr("Remote Command Failure"), text);
}

void PlayersView::kickAll()
{
    m_actions.start(confirmAndKickAll());
}

QCoro::Task<> PlayersView::confirmAndKickAll()
{
    // Its place in the queue counts from the press, but the question need not wait for those before it.
    QCoro::Task<ActionQueue::Turn> place = m_actions.turn();
    const QStringList buttons{tr("Yes"), tr("No")};
    const int pressed =
        co_await m_alerts.run(tr("Please Confirm Command"), tr("Do you really want to kick everyone?"), buttons);
    const ActionQueue::Turn turn = co_await place;
    if (!turn || pressed != 0)
        co_return;
    const QString line = QStringLiteral("kick all");
    const Reply reply = co_await m_server.sendCommand(line);
    if (reply.isCancelled)
        co_return;
    if (!reply.isSuccess()) {
        const QString text = tr("KickAll returned an error: %1").arg(reply.text);
        co_await m_alerts.run(tr("Remote Command Failure"), text);
    }
    if (turn)
        refreshLater(5s);
}

void PlayersView::savePlayerListButtonPressed()
{
    auto *panel = new QFileDialog(this, tr("Save Player List"));
    panel->setObjectName(QStringLiteral("savePlayerListPanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowFlag(Qt::Sheet);
    panel->setAcceptMode(QFileDialog::AcceptSave);
    panel->setNameFilters({tr("Text (*.txt)"), tr("Comma-separated values (*.csv)")});
    panel->setDefaultSuffix(QStringLiteral("txt"));
    panel->setDirectory(QDir::home());
    // The dialog would ask in an event loop of its own; savePlayerListTo asks instead.
    panel->setOption(QFileDialog::DontConfirmOverwrite);
    connect(panel, &QFileDialog::filterSelected, panel, [panel](const QString &filter) {
        panel->setDefaultSuffix(filter.contains(QLatin1String("csv")) ? QStringLiteral("csv") : QStringLiteral("txt"));
    });
    connect(panel, &QFileDialog::fileSelected, this,
            [this, players = playersController->arrangedObjects()](const QString &path) {
                m_actions.start(savePlayerListTo(path, players));
            });
    panel->open();
}

QCoro::Task<> PlayersView::savePlayerListTo(QString path, QList<PlayerRow> players)
{
    ReplaceQuestion question(m_alerts);
    const bool mayWrite = co_await question.mayWrite(path);
    if (!mayWrite)
        co_return;
    QString error;
    if (savePlayerList(players, path, &error))
        co_return;
    const QString text =
        tr("The player list could not be saved to \"%1\". Nothing was written.\n\n%2").arg(path, error);
    co_await m_alerts.run(tr("Save Failed"), text);
}
