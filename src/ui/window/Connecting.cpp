#include "Connecting.h"

#include "Alerts.h"
#include "HostAndPort.h"
#include "KelMapList.h"
#include "KelMapRotation.h"
#include "KelMessageRotation.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "MainTabs.h"
#include "PasswordQuestion.h"
#include "Reconnecting.h"
#include "ServersView.h"
#include "StatusLine.h"
#include "TabPage.h"
#include "UnsavedWork.h"

#include <QPointer>

#include <utility>

using namespace std::chrono_literals;

Connecting::Connecting(const Workplace &workplace, const Parts &parts, QObject *parent)
    : QObject(parent), m_workplace(workplace), m_parts(parts)
{
    connect(&parts.servers, &ServersView::connectButtonPressed, this, &Connecting::connectByForm);
    connect(&parts.servers, &ServersView::savedServerChosen, this, &Connecting::connectToSavedServer);
    connect(&parts.servers, &ServersView::disconnectButtonPressed, this, &Connecting::disconnectFromServer);
    connect(&workplace.server, &KelServer::didConnect, this, [this] { m_isComplete = true; });
    connect(&workplace.server, &KelServer::passwordRefused, this, [this] { m_isPasswordRefused = true; });
    connect(&workplace.server, &KelServer::lookUpBegan, this,
            [this](const QString &host) { m_parts.status.setStatus(tr("Looking up %1…").arg(host)); });
    connect(&workplace.server, &KelServer::lookUpEnded, this, [this] { showConnecting(m_target.label); });
    connect(&workplace.reconnecting, &Reconnecting::cameBack, this, &Connecting::comeBack);
    connect(&workplace.reconnecting, &Reconnecting::disconnectWanted, this, &Connecting::disconnectFromServer);
    m_welcomeBack.setSingleShot(true);
    m_welcomeBack.setInterval(10s);
    connect(&m_welcomeBack, &QTimer::timeout, this, &Connecting::showConnected);
}

ConnectTarget Connecting::formTarget() const
{
    const QPointer<ServersView> servers = &m_parts.servers;
    const ServerForm form = m_parts.servers.form();
    return ConnectTarget{QStringLiteral("QuickConnect"),
                         form.host,
                         form.port,
                         form.password,
                         [servers](const QString &password) {
                             if (servers != nullptr)
                                 servers->setFormPassword(password);
                         },
                         [servers] {
                             if (servers != nullptr)
                                 servers->focusFormPassword();
                         }};
}

void Connecting::connectByForm()
{
    connectTo(formTarget());
}

void Connecting::connectTo(ConnectTarget target)
{
    if (m_connects > 0) // a connect that is under way is called off first
        return;
    ++m_connects;
    m_parts.servers.setConnecting(true);
    m_statusBeforeConnect = m_parts.status.status();
    showConnecting(target.label);
    m_workplace.actions.start(connectAction(std::move(target)));
}

QCoro::Task<> Connecting::connectAction(ConnectTarget target)
{
    const ActionQueue::Turn turn = co_await m_workplace.actions.turn();
    m_isComplete = false;
    bool goesOn = false;
    CatalogueState maps = CatalogueState::Missing; // as if missing, which ends the program
    if (turn) // before the question, as the user can edit tables while the catalogue is read
        maps = co_await m_workplace.catalogues.maps.loadMapList();
    if (turn && maps != CatalogueState::Missing)
        goesOn = co_await m_parts.unsavedWork.settle();
    if (turn && goesOn) { // even if this connect fails, the former server gets nothing more
        endConnection();
        m_target = target;
        m_target.password = {}; // the session has it
        co_await loadGameData();
    }
    if (turn && goesOn)
        co_await connectToServerWithLabel(target);
    if (turn && goesOn && !m_isComplete) // the session may be connected although the connect failed
        endConnection();
    m_parts.servers.setConnecting(--m_connects > 0);
    if (!turn) // called off, which the status line shows already
        co_return;
    if (!goesOn) {
        m_parts.status.setStatus(m_statusBeforeConnect);
        co_return;
    }
    if (!m_isComplete) {
        m_parts.status.setStatus(tr("Not connected"));
        if (m_isPasswordRefused && target.focusPassword)
            target.focusPassword();
        co_return;
    }
    if (target.isPasswordNew && target.passwordTextBox)
        target.passwordTextBox(target.password);
    showConnected();
    co_await letPagesFetch(&turn);
}

QCoro::Task<> Connecting::loadGameData()
{
    co_await m_workplace.rotations.messages.loadMessageRotation();
    co_await m_workplace.catalogues.playlists.loadPlaylists();
    co_await m_workplace.rotations.maps.loadMapRotation();
}

QCoro::Task<> Connecting::connectToServerWithLabel(ConnectTarget target)
{
    showConnecting(target.label);
    m_isPasswordRefused = false;
    co_await m_workplace.server.connectToHost(target.host, target.port, target.password);
    m_workplace.server.setPasswordTextBox(target.passwordTextBox);
    if (!m_isComplete) // the values of a connect that failed are incomplete
        m_workplace.server.forgetVariables();
}

void Connecting::showConnecting(const QString &label)
{
    m_welcomeBack.stop();
    m_parts.status.setStatus(tr("Connecting to %1...").arg(label));
}

void Connecting::showConnected()
{
    const QString mode = m_workplace.server.isRanked() ? tr("(Ranked)") : tr("(Unranked)");
    m_parts.status.setStatus(tr("Connected to %1 %2").arg(m_target.label, mode));
}

void Connecting::comeBack(std::chrono::milliseconds silence, int differences)
{
    const auto seconds = std::chrono::round<std::chrono::seconds>(silence).count();
    const QString time = QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
    const QString differ = differences == 1 ? tr("1 setting differs") : tr("%n settings differ", nullptr, differences);
    const QString text = tr("Connected again after %1, %2").arg(time, differ);
    m_parts.status.setStatus(text);
    m_workplace.server.console().appendConsoleNote(text);
    m_welcomeBack.start();
    const QString password = std::exchange(m_triedPassword, QString());
    if (!password.isEmpty() && m_target.passwordTextBox)
        m_target.passwordTextBox(password);
    m_workplace.actions.start(showWhatCameBack());
}

QCoro::Task<> Connecting::showWhatCameBack()
{
    const ActionQueue::Turn turn = co_await m_workplace.actions.turn();
    co_await letPagesFetch(&turn);
}

QCoro::Task<> Connecting::letPagesFetch(const ActionQueue::Turn *turn)
{
    const QList<TabPage *> pages = m_parts.tabs.pages();
    for (TabPage *page : pages) {
        if (*turn)
            co_await page->didConnect();
    }
}

void Connecting::askForNewPassword()
{
    QWidget *window = m_parts.servers.window();
    openPasswordQuestion(window, m_target.host, [this](const QString &password) {
        m_triedPassword = password;
        m_workplace.reconnecting.tryPassword(password);
    });
}

void Connecting::endConnection()
{
    m_welcomeBack.stop();
    m_triedPassword.clear();
    m_workplace.actions.refuseWaiting();
    for (TabPage *page : m_parts.tabs.pages())
        page->willDisconnect();
    m_workplace.rotations.messages.stopRotation();
    m_workplace.server.disconnect();
}

void Connecting::disconnectFromServer()
{
    // Actions are called off before the session changes, so that nothing of them is sent any more.
    m_workplace.actions.dropWaiting();
    m_workplace.server.cancelExchange();
    m_parts.status.setStatus(tr("Not connected"));
    endConnection();
}

ConnectTarget Connecting::savedTarget(const SavedServer &server) const
{
    const QPointer<ServersView> servers = &m_parts.servers;
    const HostAndPort address = splitHostAndPort(server.host);
    const QString port = server.port.trimmed();
    return ConnectTarget{server.label,
                         address.host,
                         port.isEmpty() ? address.port : port,
                         server.password.value_or(QString()),
                         [servers, label = server.label](const QString &password) {
                             if (servers != nullptr)
                                 servers->storePassword(label, password);
                         },
                         [servers, label = server.label] {
                             if (servers != nullptr)
                                 servers->focusSavedPassword(label);
                         }};
}

void Connecting::connectToSavedServer(const SavedServer &server)
{
    if (server.password)
        connectTo(savedTarget(server));
    else // it could not be decrypted
        askForPassword(savedTarget(server));
}

void Connecting::connectByCommandLine(const QString &target, const QString &password)
{
    const HostAndPort address = splitHostAndPort(target);
    std::optional<SavedServer> saved = m_parts.servers.savedServerOf(target);
    if (saved) {
        if (!password.isEmpty())
            saved->password = password;
        connectToSavedServer(*saved);
        return;
    }
    if (address.port.isEmpty()) {
        m_workplace.actions.start(
            tell(tr("Server Not Found"), tr("No saved server has the label \"%1\", and an address "
                                            "is written as HOST:PORT.")
                                             .arg(target)));
        return;
    }
    m_parts.servers.fillForm(address.host, address.port);
    m_parts.servers.setFormPassword(password);
    if (!password.isEmpty())
        connectByForm();
    else
        askForPassword(formTarget());
}

QCoro::Task<> Connecting::tell(QString title, QString text)
{
    co_await m_workplace.alerts.run(title, text);
}

void Connecting::askForPassword(const ConnectTarget &target)
{
    openPasswordQuestion(m_parts.servers.window(), target.host, [this, asked = target](const QString &password) {
        ConnectTarget answered = asked;
        answered.password = password;
        answered.isPasswordNew = true;
        connectTo(answered);
    });
}
