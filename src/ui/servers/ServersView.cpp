#include "ServersView.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "Alerts.h"
#include "HostAndPort.h"
#include "LeftDoubleClick.h"
#include "Named.h"
#include "PlaceholderTable.h"
#include "SortKeys.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

static QList<ArrayController<SavedServer>::Column> serverColumns()
{
    return {{ServersView::tr("Label"), [](const SavedServer &server) { return server.label; }, nullptr},
            {ServersView::tr("Host"), [](const SavedServer &server) { return server.host; },
             [](const SavedServer &server) {
                 return addressSortKey(server.host);
             }},
            {ServersView::tr("Port"), [](const SavedServer &server) { return server.port; },
             [](const SavedServer &server) {
                 return numberSortKey(server.port);
             }}};
}

static QString labelOf(const SavedServer &server)
{
    return server.label;
}

/// Removes saved servers, and brings them back as they were.
class ServersView::Deletion : public QUndoCommand
{
public:
    Deletion(ServersView &view, const QStringList &labels) : m_view(view), m_labels(labels)
    {
        setText(labels.size() == 1 ? tr("Delete Server") : tr("Delete Servers"));
    }
    void redo() override
    {
        m_entries = m_view.m_savedServers.entries(m_labels); // they may have been edited after an Undo
        m_view.showWritten(m_view.m_savedServers.remove(m_labels));
    }
    void undo() override { m_view.showWritten(m_view.m_savedServers.restore(m_entries)); }

private:
    ServersView &m_view;
    QStringList m_labels;
    PropertyList m_entries;
};

static QLineEdit *passwordLine(const char *name, const QString &accessibleName, QWidget *parent)
{
    auto *field = named(name, new QLineEdit(parent), accessibleName);
    field->setEchoMode(QLineEdit::Password);
    return field;
}

// The Tab key goes through the controls in the order in which they are made.
ServersView::ServersView(SavedServers &savedServers, ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : QWidget(parent), m_connectAction(makeAction(this, tr("&Connect"), tr("Ctrl+Return"))),
      m_disconnectAction(makeAction(this, tr("&Disconnect"), &ServersView::disconnectButtonPressed, tr("Ctrl+D"))),
      savedServerTableView(named("savedServerTableView", new PlaceholderTable(this), tr("Saved servers"))),
      savedServersController(new ArrayController<SavedServer>(serverColumns(), labelOf, this)),
      savedPasswordField(passwordLine("savedPasswordField", tr("Saved password"), this)),
      connectToSavedServerButton(named("connectToSavedServerButton", new QPushButton(tr("Connect to Server"), this))),
      disconnectButton(new ActionButton(m_disconnectAction, "disconnectButton", this)),
      labelField(named("labelField", new QLineEdit(this), tr("Label"))),
      hostField(named("hostField", new QLineEdit(this), tr("Host"))),
      portField(named("portField", new QLineEdit(this), tr("Port"))),
      passwordField(passwordLine("passwordField", tr("Password"), this)),
      connectButton(new ActionButton(m_connectAction, "connectButton", this)),
      saveToServerListButton(named("saveToServerListButton", new QPushButton(tr("Save to List"), this))),
      hostwellButton(named("hostwellButton", new QPushButton(tr("Server Hosting"), this))),
      m_savedServers(savedServers), m_actions(actions), m_alerts(alerts)
{
    // Elsewhere the key of Connect sends what is typed; there it would leave the server.
    m_connectAction->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(m_connectAction);
    setUpControls();
    setUpTable();
    layOut();
    connectControls();
    loadSavedServersList();
}

void ServersView::setUpControls()
{
    savedPasswordField->setToolTip(tr("The password of the selected server; an edit is saved."));
    hostField->setPlaceholderText(QStringLiteral("192.0.2.10"));
    hostField->setToolTip(tr("The server's name or IPv4 address; its port may follow after a colon"));
    portField->setPlaceholderText(QStringLiteral("50960"));
    passwordField->setToolTip(tr("The remote-console password. It travels to the server unencrypted."));
    hostwellButton->setFlat(true);
    hostwellButton->setCursor(Qt::PointingHandCursor);
    QFont underlined = hostwellButton->font();
    underlined.setUnderline(true);
    hostwellButton->setFont(underlined);
    hostwellButton->setToolTip(tr("Opens the section of the user's guide on hosting a server"));
}

void ServersView::setUpTable()
{
    savedServerTableView->setModel(savedServersController->arranged());
    savedServerTableView->setSelectionModel(savedServersController->selection());
    savedServerTableView->setSortingEnabled(true);
    savedServerTableView->sortByColumn(0, Qt::AscendingOrder);
    savedServerTableView->setColumnWidth(1, 92);
    savedServerTableView->setColumnWidth(2, 52);
    savedServerTableView->horizontalHeader()->setMinimumSectionSize(40);
    savedServerTableView->setStretchedColumn(0);
    savedServerTableView->installEventFilter(this);
}

void ServersView::layOut()
{
    auto *savedForm = new QFormLayout;
    savedForm->addRow(tr("Saved password"), savedPasswordField);
    auto *savedButtons = new QHBoxLayout;
    savedButtons->addWidget(connectToSavedServerButton);
    savedButtons->addWidget(disconnectButton);
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->addRow(tr("Label"), labelField);
    form->addRow(tr("Host"), hostField);
    form->addRow(tr("Port"), portField);
    form->addRow(tr("Password"), passwordField);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(connectButton);
    buttons->addWidget(saveToServerListButton);
    auto *box = new QGroupBox(tr("New server"), this);
    auto *boxLayout = new QVBoxLayout(box);
    boxLayout->addLayout(form);
    boxLayout->addLayout(buttons);
    auto *layout = new QVBoxLayout(this);
    // The splitter's handle is margin enough. With fonts half as large again, the window needs all of 1280 pixels.
    layout->setContentsMargins(layout->contentsMargins() - QMargins(0, 0, 6, 0));
    layout->addWidget(savedServerTableView, 1);
    layout->addLayout(savedForm);
    layout->addLayout(savedButtons);
    layout->addWidget(box);
    layout->addWidget(hostwellButton, 0, Qt::AlignLeft);
}

void ServersView::connectControls()
{
    for (QLineEdit *field : {labelField, hostField, portField, passwordField}) {
        connect(field, &QLineEdit::textChanged, this, &ServersView::updateControls);
        connect(field, &QLineEdit::returnPressed, m_connectAction, &QAction::trigger);
    }
    connect(hostField, &QLineEdit::editingFinished, this, &ServersView::splitHostField);
    connect(m_connectAction, &QAction::triggered, this, [this] {
        splitHostField(); // before who reads the form
        emit connectButtonPressed();
    });
    connect(saveToServerListButton, &QPushButton::clicked, this, &ServersView::saveToServerListButtonPressed);
    connect(connectToSavedServerButton, &QPushButton::clicked, this, &ServersView::connectToSavedServerButtonPressed);
    connect(new LeftDoubleClick(savedServerTableView), &LeftDoubleClick::doubleClicked, this,
            [this](const QModelIndex &index) { choose(savedServersController->objectAt(index)); });
    connect(savedServersController->selection(), &QItemSelectionModel::selectionChanged, this,
            &ServersView::selectionDidChange);
    connect(savedPasswordField, &QLineEdit::editingFinished, this, &ServersView::savedPasswordDidChange);
    connect(hostwellButton, &QPushButton::clicked, this, &ServersView::hostwellButtonPressed);
}

void ServersView::updateControls()
{
    const bool hasPort = !portField->text().isEmpty() || !splitHostAndPort(hostField->text()).port.isEmpty();
    const bool isComplete = !hostField->text().isEmpty() && hasPort && !passwordField->text().isEmpty();
    m_connectAction->setEnabled(isComplete && !m_isConnecting);
    saveToServerListButton->setEnabled(isComplete && !labelField->text().isEmpty());
    m_disconnectAction->setEnabled(m_isConnecting || m_isConnected);
    connectToSavedServerButton->setEnabled(!m_isConnecting && !savedServersController->selectedObjects().isEmpty());
}

void ServersView::setConnected(bool isConnected)
{
    m_isConnected = isConnected;
    updateControls();
}

void ServersView::setConnecting(bool isConnecting)
{
    m_isConnecting = isConnecting;
    updateControls();
}

ServerForm ServersView::form() const
{
    const HostAndPort address = splitHostAndPort(hostField->text());
    const QString port = address.port.isEmpty() ? portField->text().trimmed() : address.port;
    return {address.host, port, passwordField->text()};
}

void ServersView::splitHostField()
{
    const HostAndPort address = splitHostAndPort(hostField->text());
    if (!address.port.isEmpty())
        fillForm(address.host, address.port);
}

void ServersView::fillForm(const QString &host, const QString &port)
{
    hostField->setText(host);
    portField->setText(port);
}

void ServersView::setFormPassword(const QString &password)
{
    passwordField->setText(password);
}

void ServersView::focusForm()
{
    hostField->setFocus();
}

static void focusPassword(QLineEdit *field)
{
    field->setFocus();
    field->selectAll();
}

void ServersView::focusFormPassword()
{
    focusPassword(passwordField);
}

void ServersView::focusSavedPassword(const QString &label)
{
    const QAbstractItemModel &model = *savedServerTableView->model();
    for (int row = 0; row < model.rowCount(); ++row) {
        if (model.index(row, 0).data().toString() == label)
            savedServerTableView->selectRow(row);
    }
    focusPassword(savedPasswordField);
}

void ServersView::loadSavedServersList()
{
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
    savedServerTableView->setPlaceholder(
        m_readError.isEmpty() ? tr("No server is saved yet. Fill in the form below and press \"Save to List\".")
                              : m_readError);
    savedServersController->mergeContent(m_savedServers.servers());
    selectionDidChange();
}

void ServersView::saveToServerListButtonPressed()
{
    splitHostField();
    const ServerForm typed = form();
    showWritten(m_savedServers.save(SavedServer{labelField->text(), typed.host, typed.port, typed.password}));
}

void ServersView::deleteSelectionFromTableView()
{
    QStringList labels;
    for (const SavedServer &server : savedServersController->selectedObjects())
        labels.append(server.label);
    if (!labels.isEmpty())
        m_undoStack.push(new Deletion(*this, labels));
}

void ServersView::connectToSavedServerButtonPressed()
{
    const QList<SavedServer> chosen = savedServersController->selectedObjects();
    if (!chosen.isEmpty())
        choose(chosen.last());
}

void ServersView::choose(const SavedServer &server)
{
    if (m_isConnecting)
        return;
    SavedServer chosen = server;
    chosen.password = m_savedServers.password(server.label);
    emit savedServerChosen(chosen);
}

std::optional<SavedServer> ServersView::savedServerOf(const QString &text) const
{
    std::optional<SavedServer> server = m_savedServers.find(text);
    if (server)
        server->password = m_savedServers.password(server->label);
    return server;
}

void ServersView::selectionDidChange()
{
    const QList<SavedServer> chosen = savedServersController->selectedObjects();
    std::optional<QString> password;
    if (!chosen.isEmpty())
        password = m_savedServers.password(chosen.last().label);
    savedPasswordField->setEnabled(!chosen.isEmpty());
    savedPasswordField->setText(password.value_or(QString()));
    const bool isUnknown = !chosen.isEmpty() && !password;
    savedPasswordField->setPlaceholderText(isUnknown ? tr("cannot be decrypted") : QString());
    updateControls();
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
        const auto *press = static_cast<QKeyEvent *>(event);
        const int key = press->key();
        if (key == Qt::Key_Delete || key == Qt::Key_Backspace) {
            deleteSelectionFromTableView();
            return true;
        }
        const bool isReturn = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (isReturn && !press->modifiers().testFlag(Qt::ControlModifier)) { // which is the form's, complete or not
            connectToSavedServerButtonPressed();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
