#include "MessagesView.h"

#include "ActionQueue.h"
#include "AddMessageToRotationWindowController.h"
#include "ColorPreview.h"
#include "KelMessageRotation.h"
#include "KeyHandlingTableView.h"
#include "OnAirDelegate.h"
#include "QuickMessageField.h"
#include "RotationPane.h"

MessagesView::~MessagesView() = default;

void MessagesView::addMessageToRotationMenuItemClicked()
{
    if (addMessageToRotationWindowController != nullptr)
        return;
    const auto addMessage = [this](const QString &message, const QString &duration) {
        const int before = m_messages.rowCount();
        m_actions.start(m_messages.addMessageToCurrentRotation(message, duration));
        rotationPane->tableView->scrollToBottom();
        return m_messages.rowCount() > before; // a full table has told that it takes no more
    };
    addMessageToRotationWindowController = new AddMessageToRotationWindowController(addMessage, window());
    addMessageToRotationWindowController->setAttribute(Qt::WA_DeleteOnClose);
    addMessageToRotationWindowController->open();
}

void MessagesView::startMessageRotationButtonPressed()
{
    rotationPane->tableView->finishEditing();
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
    unsendableLabel->setVisible(!KelMessageRotation::isSendable(text));
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
    rotationPane->tableView->viewport()->update();
    onAirLabel->setText(onAirText());
}

QList<qsizetype> MessagesView::takeRows(const QList<QStringList> &rows)
{
    QList<qsizetype> misfits;
    QList<MessageRotationInst> added;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const QStringList &texts = rows.at(i);
        if (texts.size() == 2 && !texts.first().isEmpty())
            added.append(MessageRotationInst{texts.first(), texts.last()});
        else
            misfits.append(i);
    }
    m_actions.start(m_messages.addEntries(added));
    return misfits;
}

void MessagesView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    updateTransport();
}

void MessagesView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_secondTimer.stop();
}
