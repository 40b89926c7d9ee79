#include "PlayerSendMessage.h"

#include "Named.h"
#include "UnsendableLabel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

PlayerSendMessage::PlayerSendMessage(QWidget *parent)
    : QDialog(parent, Qt::Sheet), messageTextField(named("messageTextField", new QLineEdit(this), tr("Message"))),
      sendButton(named("sendButton", new QPushButton(tr("Send"), this))), m_recipients(new QLabel(this)),
      m_unsendableLabel(new UnsendableLabel(this))
{
    setObjectName(QStringLiteral("playerSendMessagePanel"));
    setWindowTitle(tr("Private Message"));
    setWindowModality(Qt::WindowModal);
    messageTextField->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    sendButton->setDefault(true);
    m_recipients->setTextFormat(Qt::PlainText);
    m_recipients->setWordWrap(true);
    m_unsendableLabel->keepRoom();

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(sendButton, QDialogButtonBox::ActionRole);
    QPushButton *cancelButton = buttons->addButton(tr("Cancel"), QDialogButtonBox::ActionRole);
    cancelButton->setAutoDefault(false);
    auto *layout = new QFormLayout(this);
    layout->addRow(tr("To"), m_recipients);
    layout->addRow(tr("Message"), messageTextField);
    layout->addRow(QString(), m_unsendableLabel);
    layout->addRow(buttons);

    connect(messageTextField, &QLineEdit::textChanged, this, &PlayerSendMessage::controlTextDidChange);
    connect(sendButton, &QPushButton::clicked, this, &PlayerSendMessage::sendPressed);
    connect(cancelButton, &QPushButton::clicked, this, &PlayerSendMessage::cancelPressed);
    controlTextDidChange();
}

void PlayerSendMessage::reset()
{
    messageTextField->setText({}); // Undo must not bring back the last message
    messageTextField->setFocus();
}

void PlayerSendMessage::setRecipients(const QStringList &names)
{
    constexpr qsizetype mostNames = 8;
    QString text = names.mid(0, mostNames).join(QStringLiteral(", "));
    if (names.size() > mostNames)
        text = tr("%1 and %n more", nullptr, static_cast<int>(names.size() - mostNames)).arg(text);
    m_recipients->setText(text);
}

QString PlayerSendMessage::messageString() const
{
    return messageTextField->text();
}

void PlayerSendMessage::sendPressed()
{
    done(QDialog::Accepted);
}

void PlayerSendMessage::cancelPressed()
{
    messageTextField->setText({});
    done(QDialog::Rejected);
}

void PlayerSendMessage::controlTextDidChange()
{
    const bool isSendable = m_unsendableLabel->judge(messageTextField->text());
    sendButton->setEnabled(isSendable && !messageTextField->text().isEmpty()); // a text that cannot be sent stays
}
