#include "Journey.h"

#include "Controls.h"
#include "Hands.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

void Journey::addMessage(const QDialog &adding, const QString &message)
{
    const auto &table = *control<QAbstractItemView>(page("messagesView"), "messageRotationTableView");
    Hands::type(adding, "messageTextField", message);
    Hands::type(adding, "durationTextField", "1");
    if (table.model()->rowCount() > 0)
        takePicture("adding");
    Hands::click(adding, "addButton");
    expect(Hands::find(table, message).isValid(), "the message is added");
}

void Journey::addMessages()
{
    const QWidget &messages = showTab("messagesView");
    Hands::click(messages, "addMessageButton");
    QDialog &adding = waitForSheet("AddMessageToRotationWindowController");
    addMessage(adding, "Welcome aboard. Be kind to newcomers.");
    addMessage(adding, "^3Friday night: ^7the harbour maps until ten.");
    QTest::keyClick(&adding, Qt::Key_Escape);
    Hands::click(messages, "saveAsButton");
    const QDialog &naming = waitForSheet("SaveMessageRotationAsWindowController");
    Hands::type(naming, "nameField", "House rules");
    Hands::click(naming, "saveButton");
    expect(waitUntilIdle() && !control<QLabel>(messages, "labelUnsavedChanges")->isVisible(), "the messages are saved");
}

void Journey::playMessages()
{
    const QWidget &messages = page("messagesView");
    const auto saidCount = [this] {
        return transcript().count("say \"");
    };
    Hands::click(messages, "buttonStartMessageRotation");
    expect(waitUntil([&] { return saidCount() == 2; }), "both messages are said");
    const QString lastSecond = "On air: message 2 of 2, 1 s left";
    const auto &onAir = *control<QLabel>(messages, "onAirLabel");
    expect(waitUntil([&] { return onAir.text() == lastSecond; }), "the last message stays on air for its duration");
    takePicture("playing");
    const auto &start = *control<QPushButton>(messages, "buttonStartMessageRotation");
    expect(waitUntil([&] { return start.isEnabled(); }) && saidCount() == 2, "playing ends after the last message");
    expect(m_server.commandsSeen().filter("say \"").size() == 2, "the server gets both messages, once each");
}

void Journey::sendAQuickMessage()
{
    const QWidget &messages = page("messagesView");
    auto *field = control<QLineEdit>(messages, "quickMessageTextField");
    Hands::type(field, "Last round in ");
    Hands::click(messages, "colorButton");
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    expect(menu != nullptr, "the colours are shown");
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QTest::keyClicks(field, "five minutes!");
    takePicture("quick-message");
    QTest::keyClick(field, Qt::Key_Return);
    const QString command = "say \"Last round in ^1five minutes!\"";
    expect(waitUntil([&] { return field->text().isEmpty(); }) && waitUntilIdle(), "the quick message goes");
    expect(m_server.commandsSeen().contains(command), "the server gets the coloured message");
}
