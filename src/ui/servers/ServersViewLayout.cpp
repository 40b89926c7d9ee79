#include "ServersView.h"

#include "PlaceholderTable.h"
#include "SortKeys.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
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
    layOut();
    connectControls();
    savedPasswordField->setEnabled(false);
    controlTextDidChange();
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
    savedServerTableView->setAccessibleName(tr("Saved servers"));
    savedPasswordField->setAccessibleName(tr("Saved password"));
    savedPasswordField->setToolTip(tr("The password of the selected server; an edit is saved."));
    labelField->setAccessibleName(tr("Label"));
    hostField->setAccessibleName(tr("Host"));
    hostField->setPlaceholderText(QStringLiteral("192.0.2.10"));
    hostField->setToolTip(tr("The server's IPv4 address, four numbers with dots between them"));
    portField->setAccessibleName(tr("Port"));
    portField->setPlaceholderText(QStringLiteral("28960"));
    passwordField->setAccessibleName(tr("Password"));
    passwordField->setToolTip(tr("The remote-console password. It travels to the server unencrypted."));
    for (QLineEdit *field : {savedPasswordField, passwordField})
        field->setEchoMode(QLineEdit::Password);
    hostwellButton->setFlat(true);
    hostwellButton->setCursor(Qt::PointingHandCursor);
    QFont underlined = hostwellButton->font();
    underlined.setUnderline(true);
    hostwellButton->setFont(underlined);
    hostwellButton->setToolTip(tr("Opens the web page of the hosting company"));
}

void ServersView::makeTable()
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
    connect(savedServersController->selection(), &QItemSelectionModel::selectionChanged, this,
            &ServersView::selectionDidChange);
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
    connect(connectButton, &QPushButton::clicked, this, &ServersView::connectButtonPressed);
    connect(disconnectButton, &QPushButton::clicked, this, &ServersView::disconnectButtonPressed);
    connect(saveToServerListButton, &QPushButton::clicked, this, &ServersView::saveToServerListButtonPressed);
    connect(connectToSavedServerButton, &QPushButton::clicked, this, &ServersView::connectToSavedServerButtonPressed);
    connect(savedServerTableView, &QTableView::doubleClicked, this, &ServersView::connectToSavedServerButtonPressed);
    connect(savedPasswordField, &QLineEdit::editingFinished, this, &ServersView::savedPasswordDidChange);
    connect(hostwellButton, &QPushButton::clicked, this, &ServersView::hostwellButtonPressed);
    savedServerTableView->installEventFilter(this);
}
