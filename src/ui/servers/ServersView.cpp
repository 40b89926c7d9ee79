#include "ServersView.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "ColumnLayout.h"
#include "HostAndPort.h"
#include "LeftDoubleClick.h"
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

ServersView::ServersView(SavedServers &savedServers, ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : QWidget(parent), savedServerTableView(new PlaceholderTable(this)),
      savedServersController(new ArrayController<SavedServer>(serverColumns(), labelOf, this)),
      savedPasswordField(new QLineEdit(this)),
      connectToSavedServerButton(new QPushButton(tr("Connect to Server"), this)), labelField(new QLineEdit(this)),
      hostField(new QLineEdit(this)), portField(new QLineEdit(this)), passwordField(new QLineEdit(this)),
      connectButton(new QPushButton(tr("Connect"), this)),
      saveToServerListButton(new QPushButton(tr("Save to List"), this)),
      disconnectButton(new QPushButton(tr("Disconnect"), this)),
      hostwellButton(new QPushButton(tr("Server Hosting"), this)), m_savedServers(savedServers), m_actions(actions),
      m_alerts(alerts)
{
    nameControls();
    setUpControls();
    setUpTable();
    layOut();
    connectControls();
    loadSavedServersList();
}

void ServersView::nameControls()
{
    const QList<std::pair<QWidget *, QString>> names{
        {savedServerTableView, QStringLiteral("savedServerTableView")},
        {savedPasswordField, QStringLiteral("savedPasswordField")},
        {connectToSavedServerButton, QStringLiteral("connectToSavedServerButton")},
        {labelField, QStringLiteral("labelField")},
        {hostField, QStringLiteral("hostField")},
        {portField, QStringLiteral("portField")},
        {passwordField, QStringLiteral("passwordField")},
        {connectButton, QStringLiteral("connectButton")},
        {saveToServerListButton, QStringLiteral("saveToServerListButton")},
        {disconnectButton, QStringLiteral("disconnectButton")},
        {hostwellButton, QStringLiteral("hostwellButton")}};
    for (const auto &[control, name] : names)
        control->setObjectName(name);
}

void ServersView::setUpControls()
{
    savedServerTableView->setAccessibleName(tr("Saved servers"));
    savedPasswordField->setAccessibleName(tr("Saved password"));
    savedPasswordField->setToolTip(tr("The password of the selected server; an edit is saved."));
    labelField->setAccessibleName(tr("Label"));
    hostField->setAccessibleName(tr("Host"));
    hostField->setPlaceholderText(QStringLiteral("192.0.2.10"));
    hostField->setToolTip(tr("The server's IPv4 address, four numbers with dots between them"));
    portField->setAccessibleName(tr("Port"));
    portField->setPlaceholderText(QStringLiteral("50960"));
    passwordField->setAccessibleName(tr("Password"));
    passwordField->setToolTip(tr("The remote-console password. It travels to the server unencrypted."));
    for (QLineEdit *field : {savedPasswordField, passwordField})
        field->setEchoMode(QLineEdit::Password);
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
    savedServerTableView->horizontalHeader()->setStretchLastSection(false);
    savedServerTableView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
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

    const QList<QWidget *> order{savedServerTableView,
                                 savedPasswordField,
                                 connectToSavedServerButton,
                                 disconnectButton,
                                 labelField,
                                 hostField,
                                 portField,
                                 passwordField,
                                 connectButton,
                                 saveToServerListButton,
                                 hostwellButton};
    for (int i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void ServersView::connectControls()
{
    for (QLineEdit *field : {labelField, hostField, portField, passwordField}) {
        connect(field, &QLineEdit::textChanged, this, &ServersView::controlTextDidChange);
        connect(field, &QLineEdit::returnPressed, connectButton, &QPushButton::click);
    }
    connect(hostField, &QLineEdit::editingFinished, this, &ServersView::splitHostField);
    connect(connectButton, &QPushButton::clicked, this,
            &ServersView::splitHostField); // connected before the slots that read the form
    connect(connectButton, &QPushButton::clicked, this, &ServersView::connectButtonPressed);
    connect(disconnectButton, &QPushButton::clicked, this, &ServersView::disconnectButtonPressed);
    connect(saveToServerListButton, &QPushButton::clicked, this, &ServersView::saveToServerListButtonPressed);
    connect(connectToSavedServerButton, &QPushButton::clicked, this, &ServersView::connectToSavedServerButtonPressed);
    connect(new LeftDoubleClick(savedServerTableView), &LeftDoubleClick::doubleClicked, this,
            &ServersView::savedServerDoubleClicked);
    connect(savedServersController->selection(), &QItemSelectionModel::selectionChanged, this,
            &ServersView::selectionDidChange);
    connect(savedPasswordField, &QLineEdit::editingFinished, this, &ServersView::savedPasswordDidChange);
    connect(hostwellButton, &QPushButton::clicked, this, &ServersView::hostwellButtonPressed);
    savedServerTableView->installEventFilter(this);
}

void ServersView::controlTextDidChange()
{
    const bool hasPort = !portField->text().isEmpty() || !splitHostAndPort(hostField->text()).port.isEmpty();
    const bool isComplete = !hostField->text().isEmpty() && hasPort && !passwordField->text().isEmpty();
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

bool ServersView::canDisconnect() const
{
    return disconnectButton->isEnabled();
}

void ServersView::pressDisconnect()
{
    disconnectButton->click();
}

bool ServersView::canConnect() const
{
    return connectButton->isEnabled();
}

void ServersView::pressConnect()
{
    connectButton->click();
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

void ServersView::savedServerDoubleClicked(const QModelIndex &index)
{
    choose(savedServersController->objectAt(index));
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

static QString columnsKey()
{
    return QStringLiteral("window/savedServers");
}

void ServersView::restoreLayout(const Preferences &preferences)
{
    restoreColumns(preferences, columnsKey(), *savedServerTableView->horizontalHeader());
}

void ServersView::saveLayout(Preferences &preferences) const
{
    saveColumns(preferences, columnsKey(), *savedServerTableView->horizontalHeader());
}
