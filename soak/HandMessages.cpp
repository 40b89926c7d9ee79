#include "Hand.h"

#include "Controls.h"
#include "Hands.h"
#include "KelMessageRotation.h"
#include "MessageWatch.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

static bool isPlaying()
{
    return KelMessageRotation::sharedKelMessageRotation()->currentPlayState() == KelMessageRotation::Playing;
}

QAbstractItemView &Hand::messageTable() const
{
    return table("messagesView", "messageRotationTableView");
}

bool Hand::addMessages()
{
    return messageTable().model()->rowCount() < 30 && pressOn("messagesView", "addMessageButton");
}

bool Hand::changeMessageRows()
{
    // A message that follows itself could not be told from one that is sent twice.
    return goTo("messagesView") && !isPlaying() && changeRows("messagesView", messageTable(), 25);
}

bool Hand::editMessage()
{
    QAbstractItemView &rows = messageTable();
    if (!goTo("messagesView") || !clickRow(rows))
        return false;
    QTest::keyClick(&rows, Qt::Key_Return);
    auto *editor = rows.findChild<QLineEdit *>();
    if (editor == nullptr)
        return false;
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, newText(QStringLiteral("Notice")));
    QTest::keyClick(editor, Qt::Key_Return);
    return true;
}

bool Hand::keepMessageRotation()
{
    return messageTable().model()->rowCount() > 1 && keepRotation("messagesView", !isPlaying());
}

bool Hand::playMessages()
{
    if (!goTo("messagesView") || messageTable().model()->rowCount() < 2)
        return false;
    auto *loop = control<QCheckBox>(page("messagesView"), "checkBoxLoopMessages");
    if (!loop->isChecked())
        Hands::click(loop);
    return pressOn("messagesView", "buttonStartMessageRotation");
}

bool Hand::stopMessages()
{
    return pressOn("messagesView", "buttonStopMessageRotation");
}

bool Hand::sendQuickMessage()
{
    if (!goTo("messagesView"))
        return false;
    auto *field = control<QLineEdit>(page("messagesView"), "quickMessageTextField");
    auto *button = control<QPushButton>(page("messagesView"), "quickMessageButton");
    const QString text = newText(QStringLiteral("Quick"));
    Hands::type(field, text);
    if (field->text() != text || !button->isEnabled())
        return false;
    m_watch.noteQuickMessage(text);
    return press(button);
}
