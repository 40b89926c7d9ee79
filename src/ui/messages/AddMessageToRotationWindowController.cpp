#include "AddMessageToRotationWindowController.h"

#include "Named.h"
#include "Number.h"
#include "UnsendableLabel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

AddMessageToRotationWindowController::AddMessageToRotationWindowController(AddMessage addMessage, QWidget *parent)
    : QDialog(parent, Qt::Sheet), messageTextField(named("messageTextField", new QLineEdit(this), tr("Message"))),
      durationTextField(named("durationTextField", new QLineEdit(this), tr("Duration"))),
      addButton(named("addButton", new QPushButton(tr("Add"), this))), m_unsendableLabel(new UnsendableLabel(this)),
      m_durationHint(named("durationHint", new QLabel(this))), m_addMessage(std::move(addMessage))
{
    setObjectName(QStringLiteral("AddMessageToRotationWindowController"));
    setWindowTitle(tr("Add Message"));
    setWindowModality(Qt::WindowModal);
    messageTextField->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
    durationTextField->setPlaceholderText(tr("seconds"));
    m_unsendableLabel->keepRoom();
    m_durationHint->setWordWrap(true);
    addButton->setDefault(true);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(addButton, QDialogButtonBox::ActionRole);
    QPushButton *closeButton = buttons->addButton(tr("Close"), QDialogButtonBox::ActionRole);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setAutoDefault(false);
    auto *layout = new QFormLayout(this);
    layout->addRow(tr("Message"), messageTextField);
    layout->addRow(QString(), m_unsendableLabel);
    layout->addRow(tr("Duration"), durationTextField);
    layout->addRow(QString(), m_durationHint);
    layout->addRow(buttons);
    connect(messageTextField, &QLineEdit::textChanged, this,
            &AddMessageToRotationWindowController::controlTextDidChange);
    connect(durationTextField, &QLineEdit::textChanged, this,
            &AddMessageToRotationWindowController::controlTextDidChange);
    connect(addButton, &QPushButton::clicked, this, &AddMessageToRotationWindowController::addButtonPressed);
    connect(closeButton, &QPushButton::clicked, this, &AddMessageToRotationWindowController::closeButtonPressed);
    controlTextDidChange();
}

bool AddMessageToRotationWindowController::addButtonEnabled() const
{
    return addButton->isEnabled();
}

void AddMessageToRotationWindowController::controlTextDidChange()
{
    const QString duration = durationTextField->text();
    m_unsendableLabel->judge(messageTextField->text());
    addButton->setEnabled(!messageTextField->text().isEmpty() && !duration.isEmpty());
    const bool isStall = !duration.isEmpty() && !parseNumber(duration);
    m_durationHint->setText(isStall ? tr("Playback stays on this message until Stop is pressed")
                                    : tr("Seconds until the next message"));
    durationTextField->setAccessibleDescription(m_durationHint->text());
}

void AddMessageToRotationWindowController::addButtonPressed()
{
    const QString message = messageTextField->text();
    const QString duration = durationTextField->text();
    if (message.isEmpty() || duration.isEmpty())
        return;
    if (m_addMessage(message, duration))
        messageTextField->setText({}); // Undo must not bring back the last message
    messageTextField->setFocus();
}
