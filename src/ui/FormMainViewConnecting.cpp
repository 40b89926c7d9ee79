#include "FormMainView.h"

#include "ActionQueue.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "MapsView.h"
#include "PlayersView.h"
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
    statusLine->setStatus(tr("Connecting to %1...").arg(target.label));
    m_actions.start(connectAction(std::move(target)));
}

QCoro::Task<> FormMainView::connectAction(ConnectTarget target)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    if (turn)
        co_await loadGameData();
    if (turn)
        co_await connectToServerWithLabel(target);
    serversView->setConnecting(--m_connects > 0);
    statusLine->clearProgress();
    if (!turn) // called off: the status line already tells so
        co_return;
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
    const CatalogueState maps = co_await m_catalogues.maps.loadMapList();
    if (maps == CatalogueState::Missing)
        co_return; // the program is about to end
    co_await m_catalogues.playlists.loadPlaylists();
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
        askForPassword(std::move(target));
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

void FormMainView::askForPassword(ConnectTarget target)
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
