#include "Hand.h"

#include "FormMainView.h"
#include "Hands.h"
#include "KelMessageRotation.h"
#include "KeyHandlingTableView.h"
#include "MessageWatch.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "RotationPane.h"

#include <QTest>

static bool isPlaying()
{
    return KelMessageRotation::sharedKelMessageRotation()->currentPlayState() == KelMessageRotation::Playing;
}

bool Hand::addMessages()
{
    MessagesView &view = *window().messagesView;
    return goTo(&view) && view.rotationPane->tableView->model()->rowCount() < 30 && press(view.addMessageButton);
}

bool Hand::changeMessageRows()
{
    // A message that follows itself could not be told from one that is sent twice.
    return goTo(window().messagesView) && !isPlaying() && changeRows(*window().messagesView->rotationPane, 25);
}

bool Hand::editMessage()
{
    KeyHandlingTableView &table = *window().messagesView->rotationPane->tableView;
    if (!goTo(window().messagesView) || !clickRow(table))
        return false;
    QTest::keyClick(&table, Qt::Key_Return);
    auto *editor = table.findChild<QLineEdit *>();
    if (editor == nullptr)
        return false;
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, newText(QStringLiteral("Notice")));
    QTest::keyClick(editor, Qt::Key_Return);
    return true;
}

bool Hand::keepMessageRotation()
{
    RotationPane &pane = *window().messagesView->rotationPane;
    return goTo(window().messagesView) && pane.tableView->model()->rowCount() > 1 && keepRotation(pane, !isPlaying());
}

bool Hand::playMessages()
{
    MessagesView &view = *window().messagesView;
    if (!goTo(&view) || view.rotationPane->tableView->model()->rowCount() < 2)
        return false;
    if (!view.checkBoxLoopMessages->isChecked())
        Hands::click(view.checkBoxLoopMessages);
    return press(view.buttonStartMessageRotation);
}

bool Hand::stopMessages()
{
    return goTo(window().messagesView) && press(window().messagesView->buttonStopMessageRotation);
}

bool Hand::sendQuickMessage()
{
    MessagesView &view = *window().messagesView;
    if (!goTo(&view))
        return false;
    const QString text = newText(QStringLiteral("Quick"));
    Hands::type(view.quickMessageTextField, text);
    if (view.quickMessageTextField->text() != text || !view.quickMessageButton->isEnabled())
        return false;
    m_watch.noteQuickMessage(text);
    return press(view.quickMessageButton);
}
