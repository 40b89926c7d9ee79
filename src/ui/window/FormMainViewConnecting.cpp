#include "FormMainView.h"

#include "ActionQueue.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KeyHandlingTableView.h"
#include "MapsView.h"
#include "MessagesView.h"
#include "PlayersView.h"
#include "RotationPane.h"
#include "ServersView.h"
#include "StatusLine.h"

#include <QInputDialog>
#include <QLabel>
#include <QPointer>

ConnectTarget FormMainView::quickConnectTarget() const
{
    const QPointer<QLineEdit> field = serversView->passwordField;
    return ConnectTarget{QStringLiteral("QuickConnect"), serversView->hostField->text(), serversView->portField->text(),
                         field->text(), [field](const QString &password) {
                             if (field != nullptr)
                                 field->setText(password);
                         }};
}

void FormMainView::connectButtonPressed()
{
    connectTo(quickConnectTarget());
}

void FormMainView::connectTo(ConnectTarget target)
{
    if (m_connects > 0) // the one that is under way can be called off first
        return;
    makeViews();
    ++m_connects;
    serversView->setConnecting(true);
    m_statusBeforeConnect = statusLine->status();
    statusLine->setStatus(tr("Connecting to %1...").arg(target.label));
    m_actions.start(connectAction(std::move(target)));
}

QCoro::Task<> FormMainView::connectAction(ConnectTarget target)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    bool goesOn = false;
    CatalogueState maps = CatalogueState::Missing; // then the program is about to end
    if (turn) // before the question: while a worker reads, the tables that it is about can be edited
        maps = co_await m_catalogues.maps.loadMapList();
    if (turn && maps != CatalogueState::Missing)
        goesOn = co_await settleUnsavedWork();
    if (turn && goesOn)
        co_await loadGameData();
    if (turn && goesOn)
        co_await connectToServerWithLabel(target);
    serversView->setConnecting(--m_connects > 0);
    statusLine->clearProgress();
    if (!turn) // called off: the status line already tells so
        co_return;
    if (!goesOn) {
        statusLine->setStatus(m_statusBeforeConnect);
        co_return;
    }
    if (!m_server.isConnected()) {
        statusLine->setStatus(tr("Not connected"));
        co_return;
    }
    const QString mode = m_server.isRanked() ? tr("(Ranked)") : tr("(Unranked)");
    statusLine->setStatus(tr("Connected to %1 %2").arg(target.label, mode));
    co_await playersView->updatePlayerList();
    if (!turn)
        co_return;
    co_await mapsView->updateMapList(MapsView::GametypeFlag | MapsView::MapFlag | MapsView::RotationFlag);
    if (turn)
        mapsView->autoupdateMapsChanged();
}

QCoro::Task<> FormMainView::loadGameData()
{
    co_await m_rotations.messages.loadMessageRotation();
    co_await m_catalogues.playlists.loadPlaylists();
    co_await m_rotations.maps.loadMapRotation();
}

void FormMainView::finishEditing()
{
    if (mapsView == nullptr)
        return;
    mapsView->rotationPane->tableView->finishEditing();
    messagesView->rotationPane->tableView->finishEditing();
}

QCoro::Task<bool> FormMainView::settleUnsavedWork()
{
    makeViews(); // they hold the panel that asks for a name
    finishEditing();
    const bool areMapsSettled = co_await m_rotations.maps.saveUnsavedWork();
    if (!areMapsSettled)
        co_return false;
    const bool areMessagesSettled = co_await m_rotations.messages.saveUnsavedWork();
    co_return areMessagesSettled;
}

QCoro::Task<> FormMainView::closeAfterQuestion()
{
    const bool goesOn = co_await settleUnsavedWork();
    m_isAskingToClose = false;
    if (goesOn)
        close();
}

QCoro::Task<> FormMainView::connectToServerWithLabel(ConnectTarget target)
{
    statusLine->setStatus(tr("Connecting to %1...").arg(target.label));
    co_await m_server.connectToHost(target.host, target.port, target.password);
    m_server.setPasswordTextBox(target.passwordTextBox);
}

void FormMainView::disconnectButtonPressed()
{
    // Whatever waits or runs is called off before the session changes, so that nothing of it is sent any more.
    m_actions.dropWaiting();
    m_server.cancelExchange();
    if (mapsView != nullptr)
        mapsView->stopAutoupdateMapsTimer();
    m_rotations.messages.stopRotation();
    statusLine->setStatus(tr("Not connected"));
    m_server.disconnect();
}

void FormMainView::connectToSavedServer(const SavedServer &server)
{
    const QPointer<ServersView> servers = serversView;
    ConnectTarget target{server.label, server.host, server.port, server.password.value_or(QString()),
                         [servers, label = server.label](const QString &password) {
                             if (servers != nullptr)
                                 servers->storePassword(label, password);
                         }};
    if (server.password)
        connectTo(std::move(target));
    else // it could not be decrypted
        askForPassword(target);
}

void FormMainView::quickConnect(const QString &host, const QString &port, const QString &password)
{
    serversView->fillForm(host, port);
    serversView->passwordField->setText(password);
    if (!password.isEmpty())
        connectButtonPressed();
    else
        askForPassword(quickConnectTarget());
}

void FormMainView::askForPassword(const ConnectTarget &target)
{
    auto *dialog = new QInputDialog(this, Qt::Sheet);
    dialog->setObjectName(QStringLiteral("passwordPanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(tr("Password"));
    for (QLabel *label : dialog->findChildren<QLabel *>())
        label->setTextFormat(Qt::PlainText);
    dialog->setLabelText(tr("Remote-console password of %1").arg(target.host));
    dialog->setTextEchoMode(QLineEdit::Password);
    dialog->setOkButtonText(tr("Connect"));
    connect(dialog, &QInputDialog::textValueSelected, this, [this, asked = target](const QString &password) {
        ConnectTarget answered = asked;
        answered.password = password;
        if (answered.passwordTextBox)
            answered.passwordTextBox(password);
        connectTo(answered);
    });
    dialog->open();
}
