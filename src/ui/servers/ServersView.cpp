#include "ServersView.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "PlaceholderTable.h"
#include "Secrets.h"

#include <QDesktopServices>
#include <QKeyEvent>
#include <QUrl>

/// The field keeps no copy of the text before, so that it can be wiped.
static void replacePassword(QLineEdit *field, const QString &password)
{
    QString before = field->text();
    field->setText(password);
    wipe(before);
}

ServersView::~ServersView() = default;

void ServersView::controlTextDidChange()
{
    const bool isComplete =
        !hostField->text().isEmpty() && !portField->text().isEmpty() && !passwordField->text().isEmpty();
    connectButton->setEnabled(isComplete && !m_isConnecting);
    saveToServerListButton->setEnabled(isComplete && !labelField->text().isEmpty());
    disconnectButton->setEnabled(m_isConnecting || m_isConnected);
    connectToSavedServerButton->setEnabled(!m_isConnecting && !savedServersController->selectedObjects().isEmpty());
}

void ServersView::setConnected(bool isConnected)
{
    m_isConnected = isConnected;
    controlTextDidChange();
}

void ServersView::setConnecting(bool isConnecting)
{
    m_isConnecting = isConnecting;
    controlTextDidChange();
}

void ServersView::fillForm(const QString &host, const QString &port)
{
    hostField->setText(host);
    portField->setText(port);
}

void ServersView::loadSavedServersList()
{
    if (savedServerTableView->model() != nullptr)
        return;
    m_readError = m_savedServers.load().error;
    showList();
}

void ServersView::showWritten(const SavedServersOutcome &outcome)
{
    if (outcome.error.isEmpty())
        m_readError.clear();
    showList();
    report(outcome);
}

void ServersView::showList()
{
    if (savedServerTableView->model() == nullptr)
        makeTable();
    savedServerTableView->setPlaceholder(
        m_readError.isEmpty() ? tr("No server is saved yet. Fill in the form below and press \"Save to List\".")
                              : m_readError);
    savedServersController->mergeContent(m_savedServers.servers());
    selectionDidChange();
}

void ServersView::saveToServerListButtonPressed()
{
    loadSavedServersList(); // or what is in the file would be replaced unseen
    showWritten(m_savedServers.save(
        SavedServer{labelField->text(), hostField->text(), portField->text(), passwordField->text()}));
}

void ServersView::deleteSelectionFromTableView()
{
    loadSavedServersList();
    QStringList labels;
    for (const SavedServer &server : savedServersController->selectedObjects())
        labels.append(server.label);
    if (!labels.isEmpty())
        showWritten(m_savedServers.remove(labels));
}

void ServersView::connectToSavedServerButtonPressed()
{
    const QList<SavedServer> chosen = savedServersController->selectedObjects();
    if (chosen.isEmpty() || m_isConnecting)
        return;
    SavedServer server = chosen.last();
    server.password = m_savedServers.password(server.label);
    emit savedServerChosen(server);
}

void ServersView::selectionDidChange()
{
    const QList<SavedServer> chosen = savedServersController->selectedObjects();
    std::optional<QString> password;
    if (!chosen.isEmpty())
        password = m_savedServers.password(chosen.last().label);
    savedPasswordField->setEnabled(!chosen.isEmpty());
    replacePassword(savedPasswordField, password.value_or(QString()));
    const bool isUnknown = !chosen.isEmpty() && !password;
    savedPasswordField->setPlaceholderText(isUnknown ? tr("cannot be decrypted") : QString());
    controlTextDidChange();
}

void ServersView::savedPasswordDidChange()
{
    const QList<SavedServer> chosen = savedServersController->selectedObjects();
    const QString password = savedPasswordField->text();
    if (!chosen.isEmpty() && m_savedServers.password(chosen.last().label).value_or(QString()) != password)
        storePassword(chosen.last().label, password);
}

void ServersView::storePassword(const QString &label, const QString &password)
{
    loadSavedServersList();
    showWritten(m_savedServers.setPassword(label, password));
}

void ServersView::report(const SavedServersOutcome &outcome)
{
    QString text = outcome.error;
    if (!outcome.keptCopy.isEmpty())
        text += (text.isEmpty() ? QString() : QStringLiteral("\n\n")) +
                tr("The former file was kept as \"%1\".").arg(outcome.keptCopy);
    if (!text.isEmpty())
        m_actions.start(tell(text));
}

QCoro::Task<> ServersView::tell(QString text)
{
    co_await m_alerts.run(tr("Saved Servers"), text);
}

bool ServersView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == savedServerTableView && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            deleteSelectionFromTableView();
            return true;
        }
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            connectToSavedServerButtonPressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ServersView::hostwellButtonPressed()
{
    QDesktopServices::openUrl(QUrl(QStringLiteral("https://www.example.com/game-server-hosting")));
}
