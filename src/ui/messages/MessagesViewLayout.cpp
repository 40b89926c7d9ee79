#include "MessagesView.h"

#include "ColorPreview.h"
#include "KelMessageRotation.h"
#include "KeyHandlingTableView.h"
#include "OnAirDelegate.h"
#include "Preferences.h"
#include "QuickMessageField.h"
#include "RotationPane.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>

#include <chrono>

static const QString loopKey = QStringLiteral("checkBoxLoopMessages");

MessagesView::MessagesView(KelMessageRotation &messages, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                           QWidget *parent)
    : QWidget(parent), rotationPane(new RotationPane(messages, messageRotationLabels(), actions, alerts, this)),
      addMessageButton(new QPushButton(tr("Add Message…"), this)),
      buttonStartMessageRotation(new QPushButton(tr("Start"), this)),
      buttonStopMessageRotation(new QPushButton(tr("Stop"), this)),
      checkBoxLoopMessages(new QCheckBox(tr("Loop"), this)), onAirLabel(new QLabel(this)),
      quickMessageTextField(new QuickMessageField(this)), colorButton(new QPushButton(tr("Colour"), this)),
      quickMessageButton(new QPushButton(tr("Send"), this)), colorPreview(new ColorPreview(this)),
      unsendableLabel(
          new QLabel(tr("A character of this message does not exist on the server: it would not be sent."), this)),
      m_messages(messages), m_actions(actions), m_preferences(preferences), m_onAirDelegate(new OnAirDelegate(this)),
      m_colorMenu(new QMenu(this))
{
    nameControls();
    layOut();
    connectControls();
    quickMessageDidChange();
    updateTransport();
}

void MessagesView::nameControls()
{
    addMessageButton->setObjectName(QStringLiteral("addMessageButton"));
    rotationPane->addButtonAtFront(addMessageButton);
    rotationPane->setTakeRows([this](const QList<QStringList> &rows) { return takeRows(rows); });
    rotationPane->tableView->setItemDelegate(m_onAirDelegate);
    buttonStartMessageRotation->setObjectName(QStringLiteral("buttonStartMessageRotation"));
    buttonStartMessageRotation->setToolTip(tr("Send the messages one after another, from the first"));
    buttonStopMessageRotation->setObjectName(QStringLiteral("buttonStopMessageRotation"));
    checkBoxLoopMessages->setObjectName(loopKey);
    checkBoxLoopMessages->setToolTip(tr("Begin again after the last message"));
    checkBoxLoopMessages->setChecked(m_preferences.boolValue(loopKey));
    onAirLabel->setObjectName(QStringLiteral("onAirLabel"));
    onAirLabel->setTextFormat(Qt::PlainText);
    quickMessageTextField->setAccessibleName(tr("Quick message"));
    quickMessageTextField->setPlaceholderText(tr("Type a message and press Return to send it to all players"));
    colorButton->setObjectName(QStringLiteral("colorButton"));
    colorButton->setToolTip(tr("Insert the code of a colour"));
    quickMessageButton->setObjectName(QStringLiteral("quickMessageButton"));
    unsendableLabel->setObjectName(QStringLiteral("unsendableLabel"));
    unsendableLabel->setWordWrap(true);
    quickMessageTextField->addColorCodes(*m_colorMenu);
    m_secondTimer.setInterval(std::chrono::milliseconds(200));
}

void MessagesView::layOut()
{
    auto *transport = new QHBoxLayout;
    transport->addWidget(buttonStartMessageRotation);
    transport->addWidget(buttonStopMessageRotation);
    transport->addWidget(checkBoxLoopMessages);
    transport->addSpacing(12);
    transport->addWidget(onAirLabel, 1);
    auto *quickTitle = new QLabel(tr("Quick message"), this);
    quickTitle->setBuddy(quickMessageTextField);
    auto *quick = new QHBoxLayout;
    quick->addWidget(quickTitle);
    quick->addWidget(quickMessageTextField, 1);
    quick->addWidget(colorButton);
    quick->addWidget(quickMessageButton);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(rotationPane, 1);
    layout->addSpacing(4);
    layout->addLayout(transport);
    layout->addSpacing(8);
    layout->addLayout(quick);
    layout->addWidget(unsendableLabel);
    layout->addWidget(colorPreview);
    const QList<QWidget *> order{rotationPane->deleteButton, buttonStartMessageRotation, buttonStopMessageRotation,
                                 checkBoxLoopMessages,       quickMessageTextField,      colorButton,
                                 quickMessageButton};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void MessagesView::connectControls()
{
    connect(addMessageButton, &QPushButton::clicked, this, &MessagesView::addMessageToRotationMenuItemClicked);
    connect(buttonStartMessageRotation, &QPushButton::clicked, this, &MessagesView::startMessageRotationButtonPressed);
    connect(buttonStopMessageRotation, &QPushButton::clicked, this, &MessagesView::stopMessageRotationButtonPressed);
    connect(checkBoxLoopMessages, &QCheckBox::toggled, this,
            [this](bool isOn) { m_preferences.setValue(loopKey, isOn); });
    connect(quickMessageButton, &QPushButton::clicked, this, &MessagesView::quickMessageButtonPressed);
    connect(quickMessageTextField, &QLineEdit::returnPressed, this, &MessagesView::quickMessageButtonPressed);
    connect(quickMessageTextField, &QLineEdit::textChanged, this, &MessagesView::quickMessageDidChange);
    connect(colorButton, &QPushButton::clicked, this,
            [this] { m_colorMenu->popup(colorButton->mapToGlobal(QPoint(0, colorButton->height()))); });
    connect(&m_messages, &KelMessageRotation::quickMessageTextChanged, quickMessageTextField,
            [this](const QString &text) {
                if (quickMessageTextField->text() != text)
                    quickMessageTextField->setText(text);
            });
    connect(&m_messages, &KelMessageRotation::transportButtonsChanged, this, &MessagesView::updateTransport);
    connect(&m_messages, &KelMessageRotation::entryOnAirChanged, this, &MessagesView::updateOnAir);
    connect(m_messages.tableModel(), &QAbstractItemModel::rowsMoved, this, &MessagesView::updateOnAir);
    connect(m_messages.tableModel(), &QAbstractItemModel::layoutChanged, this, &MessagesView::updateOnAir);
    connect(&m_secondTimer, &QTimer::timeout, this, &MessagesView::updateOnAir);
}
