#include "ServersView.h"

#include <QDesktopServices>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QUrl>
#include <QVBoxLayout>

ServersView::ServersView(QWidget *parent)
    : QWidget(parent), labelField(new QLineEdit(this)), hostField(new QLineEdit(this)), portField(new QLineEdit(this)),
      passwordField(new QLineEdit(this)), connectButton(new QPushButton(tr("Connect"), this)),
      disconnectButton(new QPushButton(tr("Disconnect"), this)),
      hostwellButton(new QPushButton(tr("Server Hosting"), this))
{
    layOut();
    for (QLineEdit *field : {labelField, hostField, portField, passwordField}) {
        connect(field, &QLineEdit::textChanged, this, &ServersView::controlTextDidChange);
        connect(field, &QLineEdit::returnPressed, connectButton, &QPushButton::click);
    }
    connect(connectButton, &QPushButton::clicked, this, &ServersView::connectButtonPressed);
    connect(disconnectButton, &QPushButton::clicked, this, &ServersView::disconnectButtonPressed);
    connect(hostwellButton, &QPushButton::clicked, this, &ServersView::hostwellButtonPressed);
    controlTextDidChange();
}

void ServersView::layOut()
{
    labelField->setObjectName(QStringLiteral("labelField"));
    labelField->setAccessibleName(tr("Label"));
    hostField->setObjectName(QStringLiteral("hostField"));
    hostField->setAccessibleName(tr("Host"));
    hostField->setPlaceholderText(QStringLiteral("192.0.2.10"));
    hostField->setToolTip(tr("The server's IPv4 address, four numbers with dots between them"));
    portField->setObjectName(QStringLiteral("portField"));
    portField->setAccessibleName(tr("Port"));
    portField->setPlaceholderText(QStringLiteral("28960"));
    passwordField->setObjectName(QStringLiteral("passwordField"));
    passwordField->setAccessibleName(tr("Password"));
    passwordField->setEchoMode(QLineEdit::Password);
    passwordField->setToolTip(tr("The remote-console password. It travels to the server unencrypted."));
    connectButton->setObjectName(QStringLiteral("connectButton"));
    disconnectButton->setObjectName(QStringLiteral("disconnectButton"));
    hostwellButton->setObjectName(QStringLiteral("hostwellButton"));
    hostwellButton->setFlat(true);
    hostwellButton->setCursor(Qt::PointingHandCursor);
    QFont underlined = hostwellButton->font();
    underlined.setUnderline(true);
    hostwellButton->setFont(underlined);
    hostwellButton->setToolTip(tr("Opens the web page of the hosting company"));

    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->addRow(tr("Label"), labelField);
    form->addRow(tr("Host"), hostField);
    form->addRow(tr("Port"), portField);
    form->addRow(tr("Password"), passwordField);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(connectButton);
    buttons->addWidget(disconnectButton);
    auto *box = new QGroupBox(tr("Server"), this);
    auto *boxLayout = new QVBoxLayout(box);
    boxLayout->addLayout(form);
    boxLayout->addLayout(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(box);
    layout->addStretch();
    layout->addWidget(hostwellButton, 0, Qt::AlignLeft);
}

void ServersView::controlTextDidChange()
{
    const bool isComplete =
        !hostField->text().isEmpty() && !portField->text().isEmpty() && !passwordField->text().isEmpty();
    connectButton->setEnabled(isComplete && !m_isConnecting);
    disconnectButton->setEnabled(m_isConnecting || m_isConnected);
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

void ServersView::hostwellButtonPressed()
{
    QDesktopServices::openUrl(QUrl(QStringLiteral("https://www.example.com/game-server-hosting")));
}
