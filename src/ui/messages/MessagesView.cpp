#include "MessagesView.h"

#include "ActionButton.h"
#include "ActionQueue.h"
#include "AddMessageToRotationWindowController.h"
#include "ColorPreview.h"
#include "KelMessageRotation.h"
#include "Named.h"
#include "OnAirDelegate.h"
#include "Preferences.h"
#include "QuickMessageField.h"
#include "RotationPane.h"
#include "TitleLabel.h"
#include "UnsendableLabel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>

// The Tab key goes through the controls in the order in which they are made.
MessagesView::MessagesView(KelMessageRotation &messages, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                           QWidget *parent)
    : TabPage(parent),
      m_addAction(makeAction(this, tr("&Add Message…"), &MessagesView::addMessageToRotationMenuItemClicked)),
      m_startAction(makeAction(this, tr("&Start"), &MessagesView::startMessageRotationButtonPressed)),
      m_stopAction(makeAction(this, tr("S&top"), &MessagesView::stopMessageRotationButtonPressed)),
      rotationPane(new RotationPane(messages, actions, alerts, this)), m_messages(messages), m_actions(actions),
      m_onAirDelegate(new OnAirDelegate(this))
{
    setFocusProxy(rotationPane);
    m_startAction->setToolTip(tr("Send the messages one after another, from the first"));
    rotationPane->addButtonAtFront(new ActionButton(m_addAction, "addMessageButton", this));
    rotationPane->setRowDelegate(m_onAirDelegate);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(rotationPane, 1);
    layout->addSpacing(4);
    layout->addLayout(makeTransport(preferences));
    layout->addSpacing(8);
    layout->addLayout(makeQuickMessage());
    unsendableLabel = new UnsendableLabel(this);
    colorPreview = new ColorPreview(this);
    layout->addWidget(unsendableLabel);
    layout->addWidget(colorPreview);
    connectMessages();
    quickMessageDidChange();
    updateTransport();
}

QLayout *MessagesView::makeTransport(Preferences &preferences)
{
    auto *transport = new QHBoxLayout;
    transport->addWidget(new ActionButton(m_startAction, "buttonStartMessageRotation", this));
    transport->addWidget(new ActionButton(m_stopAction, "buttonStopMessageRotation", this));
    auto *loop = named("checkBoxLoopMessages", new QCheckBox(tr("Loop"), this));
    loop->setToolTip(tr("Begin again after the last message"));
    loop->setChecked(preferences.boolValue(loop->objectName()));
    connect(loop, &QCheckBox::toggled, this,
            [&preferences, key = loop->objectName()](bool isOn) { preferences.setValue(key, isOn); });
    transport->addWidget(loop);
    transport->addSpacing(12);
    onAirLabel = named("onAirLabel", new QLabel(this));
    onAirLabel->setTextFormat(Qt::PlainText);
    transport->addWidget(onAirLabel, 1);
    return transport;
}

QLayout *MessagesView::makeQuickMessage()
{
    quickMessageTextField = named("quickMessageTextField", new QuickMessageField(this), tr("Quick message"));
    quickMessageTextField->setPlaceholderText(tr("Type a message and press Return to send it to all players"));
    auto *colorButton = named("colorButton", new QPushButton(tr("Colour"), this));
    colorButton->setToolTip(tr("Insert the code of a colour"));
    auto *colorMenu = new QMenu(this);
    quickMessageTextField->addColorCodes(*colorMenu);
    auto *sendButton = named("quickMessageButton", new QPushButton(tr("Send"), this));
    connect(sendButton, &QPushButton::clicked, this, &MessagesView::quickMessageButtonPressed);
    connect(quickMessageTextField, &QLineEdit::returnPressed, this, &MessagesView::quickMessageButtonPressed);
    connect(quickMessageTextField, &QLineEdit::textChanged, this, &MessagesView::quickMessageDidChange);
    connect(colorButton, &QPushButton::clicked, colorMenu,
            [colorButton, colorMenu] { colorMenu->popup(colorButton->mapToGlobal(colorButton->rect().bottomLeft())); });
    auto *quick = new QHBoxLayout;
    quick->addWidget(titleOf(tr("Quick message"), quickMessageTextField));
    quick->addWidget(quickMessageTextField, 1);
    quick->addWidget(colorButton);
    quick->addWidget(sendButton);
    return quick;
}

void MessagesView::connectMessages()
{
    connect(&m_messages, &KelMessageRotation::quickMessageTextChanged, quickMessageTextField,
            [this](const QString &text) {
                if (quickMessageTextField->text() != text)
                    quickMessageTextField->setText(text);
            });
    connect(&m_messages, &KelMessageRotation::transportButtonsChanged, this, &MessagesView::updateTransport);
    connect(&m_messages, &KelMessageRotation::entryOnAirChanged, this, &MessagesView::updateOnAir);
    connect(m_messages.tableModel(), &QAbstractItemModel::rowsMoved, this, &MessagesView::updateOnAir);
    connect(m_messages.tableModel(), &QAbstractItemModel::layoutChanged, this, &MessagesView::updateOnAir);
    m_secondTimer.setInterval(std::chrono::milliseconds(200));
    connect(&m_secondTimer, &QTimer::timeout, this, &MessagesView::updateOnAir);
}

void MessagesView::fillMenu(QMenu &menu)
{
    menu.addAction(m_addAction);
    menu.addSeparator();
    menu.addActions({m_startAction, m_stopAction});
}

PageDocument *MessagesView::document()
{
    return rotationPane;
}

void MessagesView::addMessageToRotationMenuItemClicked()
{
    if (addMessageToRotationWindowController != nullptr)
        return;
    const auto addMessage = [this](const QString &message, const QString &duration) {
        const int before = m_messages.rowCount();
        m_actions.start(m_messages.addMessageToCurrentRotation(message, duration));
        rotationPane->scrollToEnd();
        return m_messages.rowCount() > before; // a full table takes no row and has shown an alert
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
    m_startAction->setEnabled(m_messages.startEnabled());
    m_stopAction->setEnabled(m_messages.stopEnabled());
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
