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

bool Journey::addMessage(const QDialog &adding, const QString &message)
{
    const auto &table = *control<QAbstractItemView>(page("messagesView"), "messageRotationTableView");
    Hands::type(adding, "messageTextField", message);
    Hands::type(adding, "durationTextField", QStringLiteral("1"));
    if (table.model()->rowCount() > 0)
        takePicture(QStringLiteral("adding"));
    Hands::click(adding, "addButton");
    return expect(Hands::find(table, message).isValid(), QStringLiteral("the message is added"));
}

bool Journey::addMessages()
{
    const QWidget &messages = showTab("messagesView");
    Hands::click(messages, "addMessageButton");
    QDialog *adding = waitForSheet(QStringLiteral("AddMessageToRotationWindowController"));
    if (adding == nullptr)
        return false;
    if (!addMessage(*adding, QStringLiteral("Welcome aboard. Be kind to newcomers.")) ||
        !addMessage(*adding, QStringLiteral("^3Friday night: ^7the harbour maps until ten.")))
        return false;
    QTest::keyClick(adding, Qt::Key_Escape);
    Hands::click(messages, "saveAsButton");
    const QDialog *naming = waitForSheet(QStringLiteral("SaveMessageRotationAsWindowController"));
    if (naming == nullptr)
        return false;
    Hands::type(*naming, "nameField", QStringLiteral("House rules"));
    Hands::click(*naming, "saveButton");
    return expect(waitUntilIdle() && !control<QLabel>(messages, "labelUnsavedChanges")->isVisible(),
                  QStringLiteral("the messages are saved"));
}

bool Journey::playMessages()
{
    const QWidget &messages = page("messagesView");
    const auto saidCount = [this] {
        return transcript().count(QLatin1String("say \""));
    };
    Hands::click(messages, "buttonStartMessageRotation");
    if (!expect(waitUntil([&] { return saidCount() == 2; }), QStringLiteral("both messages are said")))
        return false;
    const QString lastSecond = QStringLiteral("On air: message 2 of 2, 1 s left");
    const auto &onAir = *control<QLabel>(messages, "onAirLabel");
    if (!expect(waitUntil([&] { return onAir.text() == lastSecond; }),
                QStringLiteral("the last message stays on air for its duration")))
        return false;
    takePicture(QStringLiteral("playing"));
    const auto &start = *control<QPushButton>(messages, "buttonStartMessageRotation");
    if (!expect(waitUntil([&] { return start.isEnabled(); }) && saidCount() == 2,
                QStringLiteral("playing ends after the last message")))
        return false;
    return expect(m_server.commandsSeen().filter(QLatin1String("say \"")).size() == 2,
                  QStringLiteral("the server gets both messages, once each"));
}

bool Journey::sendAQuickMessage()
{
    const QWidget &messages = page("messagesView");
    auto *field = control<QLineEdit>(messages, "quickMessageTextField");
    Hands::type(field, QStringLiteral("Last round in "));
    Hands::click(messages, "colorButton");
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!expect(menu != nullptr, QStringLiteral("the colours are shown")))
        return false;
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QTest::keyClicks(field, QStringLiteral("five minutes!"));
    takePicture(QStringLiteral("quick-message"));
    QTest::keyClick(field, Qt::Key_Return);
    const QString command = QStringLiteral("say \"Last round in ^1five minutes!\"");
    if (!expect(waitUntil([&] { return field->text().isEmpty(); }) && waitUntilIdle(),
                QStringLiteral("the quick message goes")))
        return false;
    return expect(m_server.commandsSeen().contains(command), QStringLiteral("the server gets the coloured message"));
}
