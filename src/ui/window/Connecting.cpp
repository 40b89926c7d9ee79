#include "Connecting.h"

#include "ActionQueue.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "MainTabs.h"
#include "ServersView.h"
#include "StatusLine.h"
#include "TabPage.h"
#include "UnsavedWork.h"

#include <QInputDialog>
#include <QLabel>
#include <QPointer>

#include <utility>

Connecting::Connecting(const Workplace &workplace, const Parts &parts, QObject *parent)
    : QObject(parent), m_workplace(workplace), m_parts(parts)
{
    connect(&parts.servers, &ServersView::connectButtonPressed, this, &Connecting::connectByForm);
    connect(&parts.servers, &ServersView::savedServerChosen, this, &Connecting::connectToSavedServer);
    connect(&parts.servers, &ServersView::disconnectButtonPressed, this, &Connecting::disconnectFromServer);
}

ConnectTarget Connecting::formTarget() const
{
    const QPointer<ServersView> servers = &m_parts.servers;
    const ServerForm form = m_parts.servers.form();
    return ConnectTarget{QStringLiteral("QuickConnect"), form.host, form.port, form.password,
                         [servers](const QString &password) {
                             if (servers != nullptr)
                                 servers->setFormPassword(password);
                         }};
}

void Connecting::connectByForm()
{
    connectTo(formTarget());
}

void Connecting::connectTo(ConnectTarget target)
{
    if (m_connects > 0) // the one that is under way can be called off first
        return;
    ++m_connects;
    m_parts.servers.setConnecting(true);
    m_statusBeforeConnect = m_parts.status.status();
    m_parts.status.setStatus(tr("Connecting to %1...").arg(target.label));
    m_workplace.actions.start(connectAction(std::move(target)));
}

QCoro::Task<> Connecting::connectAction(ConnectTarget target)
{
    const ActionQueue::Turn turn = co_await m_workplace.actions.turn();
    bool goesOn = false;
    CatalogueState maps = CatalogueState::Missing; // then the program is about to end
    if (turn) // before the question: while a worker reads, the tables that it is about can be edited
        maps = co_await m_workplace.catalogues.maps.loadMapList();
    if (turn && maps != CatalogueState::Missing)
        goesOn = co_await m_parts.unsavedWork.settle();
    if (turn && goesOn)
        co_await loadGameData();
    if (turn && goesOn)
        co_await connectToServerWithLabel(target);
    m_parts.servers.setConnecting(--m_connects > 0);
    m_parts.status.clearProgress();
    if (!turn) // called off: the status line already tells so
        co_return;
    if (!goesOn) {
        m_parts.status.setStatus(m_statusBeforeConnect);
        co_return;
    }
    if (!m_workplace.server.isConnected()) {
        m_parts.status.setStatus(tr("Not connected"));
        co_return;
    }
    const QString mode = m_workplace.server.isRanked() ? tr("(Ranked)") : tr("(Unranked)");
    m_parts.status.setStatus(tr("Connected to %1 %2").arg(target.label, mode));
    const QList<TabPage *> pages = m_parts.tabs.pages();
    for (TabPage *page : pages) {
        if (turn)
            co_await page->didConnect();
    }
}

QCoro::Task<> Connecting::loadGameData()
{
    co_await m_workplace.rotations.messages.loadMessageRotation();
    co_await m_workplace.catalogues.playlists.loadPlaylists();
    co_await m_workplace.rotations.maps.loadMapRotation();
}

QCoro::Task<> Connecting::connectToServerWithLabel(ConnectTarget target)
{
    m_parts.status.setStatus(tr("Connecting to %1...").arg(target.label));
    co_await m_workplace.server.connectToHost(target.host, target.port, target.password);
    m_workplace.server.setPasswordTextBox(target.passwordTextBox);
}

void Connecting::disconnectFromServer()
{
    // Whatever waits or runs is called off before the session changes, so that nothing of it is sent any more.
    m_workplace.actions.dropWaiting();
    m_workplace.server.cancelExchange();
    for (TabPage *page : m_parts.tabs.pages())
        page->willDisconnect();
    m_workplace.rotations.messages.stopRotation();
    m_parts.status.setStatus(tr("Not connected"));
    m_workplace.server.disconnect();
}

void Connecting::connectToSavedServer(const SavedServer &server)
{
    const QPointer<ServersView> servers = &m_parts.servers;
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

void Connecting::quickConnect(const QString &host, const QString &port, const QString &password)
{
    m_parts.servers.fillForm(host, port);
    m_parts.servers.setFormPassword(password);
    if (!password.isEmpty())
        connectByForm();
    else
        askForPassword(formTarget());
}

void Connecting::askForPassword(const ConnectTarget &target)
{
    auto *dialog = new QInputDialog(m_parts.servers.window(), Qt::Sheet);
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
