#include "FormMainView.h"

#include "ActionQueue.h"
#include "KelMapList.h"
#include "KelServer.h"
#include "PlayersView.h"
#include "ServersView.h"
#include "StatusLine.h"

#include <QInputDialog>
#include <QPointer>

void FormMainView::connectButtonPressed()
{
    const QPointer<QLineEdit> field = serversView->passwordField;
    connectTo(ConnectTarget{QStringLiteral("QuickConnect"), serversView->hostField->text(),
                            serversView->portField->text(), field->text(), [field](const QString &password) {
                                if (field != nullptr)
                                    field->setText(password);
                            }});
}

void FormMainView::connectTo(ConnectTarget target)
{
    makeViews();
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
    serversView->setConnecting(false);
    if (!turn) // called off: the status line already tells so
        co_return;
    if (!m_server.isConnected()) {
        statusLine->setStatus(tr("Not connected"));
        co_return;
    }
    const QString mode = m_server.isRanked() ? tr("(Ranked)") : tr("(Unranked)");
    statusLine->setStatus(tr("Connected to %1 %2").arg(target.label, mode));
    co_await playersView->updatePlayerList();
}

QCoro::Task<> FormMainView::loadGameData()
{
    co_await m_catalogues.maps.loadMapList();
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
    statusLine->setStatus(tr("Not connected"));
    m_server.disconnect();
}

void FormMainView::quickConnect(const QString &host, const QString &port, const QString &password)
{
    serversView->fillForm(host, port);
    serversView->passwordField->setText(password);
    if (password.isEmpty())
        askForPassword();
    else
        connectButtonPressed();
}

void FormMainView::askForPassword()
{
    auto *dialog = new QInputDialog(this, Qt::Sheet);
    dialog->setObjectName(QStringLiteral("passwordPanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->setWindowTitle(tr("Password"));
    dialog->setLabelText(tr("Remote-console password of %1").arg(serversView->hostField->text()));
    dialog->setTextEchoMode(QLineEdit::Password);
    dialog->setOkButtonText(tr("Connect"));
    connect(dialog, &QInputDialog::textValueSelected, this, [this](const QString &password) {
        serversView->passwordField->setText(password);
        if (serversView->connectButton->isEnabled())
            connectButtonPressed();
    });
    dialog->open();
}
