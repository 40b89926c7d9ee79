#include "MessagesView.h"

#include "ActionQueue.h"
#include "AddMessageToRotationWindowController.h"
#include "ButtonAction.h"
#include "ColorPreview.h"
#include "KelMessageRotation.h"
#include "OnAirDelegate.h"
#include "Preferences.h"
#include "QuickMessageField.h"
#include "RotationPane.h"
#include "UnsendableLabel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>

static QString columnsKey()
{
    return QStringLiteral("window/messages");
}

static QString loopKey()
{
    return QStringLiteral("checkBoxLoopMessages");
}

// The Tab key goes through the controls in the order in which they are made.
MessagesView::MessagesView(KelMessageRotation &messages, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                           QWidget *parent)
    : TabPage(parent), rotationPane(new RotationPane(messages, actions, alerts, this)),
      addMessageButton(new QPushButton(tr("Add Message…"), this)),
      buttonStartMessageRotation(new QPushButton(tr("Start"), this)),
      buttonStopMessageRotation(new QPushButton(tr("Stop"), this)),
      checkBoxLoopMessages(new QCheckBox(tr("Loop"), this)), onAirLabel(new QLabel(this)),
      quickMessageTextField(new QuickMessageField(this)), colorButton(new QPushButton(tr("Colour"), this)),
      quickMessageButton(new QPushButton(tr("Send"), this)), colorPreview(new ColorPreview(this)),
      unsendableLabel(new UnsendableLabel(this)), m_messages(messages), m_actions(actions), m_preferences(preferences),
      m_onAirDelegate(new OnAirDelegate(this)), m_colorMenu(new QMenu(this))
{
    setFocusProxy(rotationPane);
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
    rotationPane->setRowDelegate(m_onAirDelegate);
    buttonStartMessageRotation->setObjectName(QStringLiteral("buttonStartMessageRotation"));
    buttonStartMessageRotation->setToolTip(tr("Send the messages one after another, from the first"));
    buttonStopMessageRotation->setObjectName(QStringLiteral("buttonStopMessageRotation"));
    checkBoxLoopMessages->setObjectName(loopKey());
    checkBoxLoopMessages->setToolTip(tr("Begin again after the last message"));
    checkBoxLoopMessages->setChecked(m_preferences.boolValue(loopKey()));
    onAirLabel->setObjectName(QStringLiteral("onAirLabel"));
    onAirLabel->setTextFormat(Qt::PlainText);
    quickMessageTextField->setAccessibleName(tr("Quick message"));
    quickMessageTextField->setPlaceholderText(tr("Type a message and press Return to send it to all players"));
    colorButton->setObjectName(QStringLiteral("colorButton"));
    colorButton->setToolTip(tr("Insert the code of a colour"));
    quickMessageButton->setObjectName(QStringLiteral("quickMessageButton"));
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
}

void MessagesView::connectControls()
{
    connect(addMessageButton, &QPushButton::clicked, this, &MessagesView::addMessageToRotationMenuItemClicked);
    connect(buttonStartMessageRotation, &QPushButton::clicked, this, &MessagesView::startMessageRotationButtonPressed);
    connect(buttonStopMessageRotation, &QPushButton::clicked, this, &MessagesView::stopMessageRotationButtonPressed);
    connect(checkBoxLoopMessages, &QCheckBox::toggled, this,
            [this](bool isOn) { m_preferences.setValue(loopKey(), isOn); });
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

void MessagesView::fillMenu(QMenu &menu)
{
    addButtonAction(menu, tr("&Add Message…"), QKeySequence(), addMessageButton);
    menu.addSeparator();
    addButtonAction(menu, tr("&Start"), QKeySequence(), buttonStartMessageRotation);
    addButtonAction(menu, tr("S&top"), QKeySequence(), buttonStopMessageRotation);
}

PageDocument *MessagesView::document()
{
    return rotationPane;
}

void MessagesView::restoreLayout(const Preferences &preferences)
{
    rotationPane->restoreColumns(preferences, columnsKey());
}

void MessagesView::saveLayout(Preferences &preferences) const
{
    rotationPane->saveColumns(preferences, columnsKey());
}

void MessagesView::addMessageToRotationMenuItemClicked()
{
    if (addMessageToRotationWindowController != nullptr)
        return;
    const auto addMessage = [this](const QString &message, const QString &duration) {
        const int before = m_messages.rowCount();
        m_actions.start(m_messages.addMessageToCurrentRotation(message, duration));
        rotationPane->scrollToEnd();
        return m_messages.rowCount() > before; // a full table has told that it takes no more
    };
    addMessageToRotationWindowController = new AddMessageToRotationWindowController(addMessage, window());
    addMessageToRotationWindowController->setAttribute(Qt::WA_DeleteOnClose);
    addMessageToRotationWindowController->open();
}

void MessagesView::startMessageRotationButtonPressed()
{
    rotationPane->finishEditing();
    m_messages.startRotation();
}

void MessagesView::stopMessageRotationButtonPressed()
{
    m_messages.stopRotation();
}

void MessagesView::quickMessageButtonPressed()
{
    m_messages.setQuickMessageText(quickMessageTextField->text());
    m_messages.sendQuickMessage();
}

void MessagesView::quickMessageDidChange()
{
    const QString text = quickMessageTextField->text();
    m_messages.setQuickMessageText(text);
    colorPreview->showMessage(text);
    unsendableLabel->judge(text);
}

void MessagesView::updateTransport()
{
    buttonStartMessageRotation->setEnabled(m_messages.startEnabled());
    buttonStopMessageRotation->setEnabled(m_messages.stopEnabled());
    if (m_messages.stopEnabled() && isVisible())
        m_secondTimer.start();
    else
        m_secondTimer.stop();
    updateOnAir();
}

QString MessagesView::onAirText() const
{
    if (m_messages.currentPlayState() != KelMessageRotation::Playing)
        return tr("Stopped");
    const int row = m_messages.rowOnAir();
    const QString place = row < 0 ? tr("On air: a message that is no longer in the list")
                                  : tr("On air: message %1 of %2").arg(row + 1).arg(m_messages.entries().size());
    if (m_messages.isSending())
        return tr("%1, being sent").arg(place);
    const auto remaining = m_messages.remainingTime();
    if (!remaining)
        return tr("%1, until Stop is pressed").arg(place);
    // Rounded up, so that the last second reads 1 and not 0.
    return tr("%1, %2 s left").arg(place).arg((remaining->count() + 999) / 1000);
}

void MessagesView::updateOnAir()
{
    m_onAirDelegate->setRowOnAir(m_messages.rowOnAir());
    rotationPane->updateRows();
    onAirLabel->setText(onAirText());
}

void MessagesView::showEvent(QShowEvent *event)
{
    TabPage::showEvent(event);
    updateTransport();
}

void MessagesView::hideEvent(QHideEvent *event)
{
    TabPage::hideEvent(event);
    m_secondTimer.stop();
}
