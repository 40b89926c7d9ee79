#include "Journey.h"

#include "AddMessageToRotationWindowController.h"
#include "AppDelegate.h"
#include "FormMainView.h"
#include "Hands.h"
#include "KeyHandlingTableView.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "RotationPane.h"
#include "SaveRotationAsWindowController.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

bool Journey::addMessage(const QString &message)
{
    AddMessageToRotationWindowController &sheet = *window().messagesView->addMessageToRotationWindowController;
    Hands::type(sheet.messageTextField, message);
    Hands::type(sheet.durationTextField, QStringLiteral("1"));
    if (window().messagesView->rotationPane->tableView->model()->rowCount() > 0)
        takePicture(QStringLiteral("adding"));
    Hands::click(sheet.addButton);
    return expect(Hands::find(*window().messagesView->rotationPane->tableView, message).isValid(),
                  QStringLiteral("the message is added"));
}

bool Journey::addMessages()
{
    MessagesView &view = *window().messagesView;
    Hands::showTab(*window().tabControlMain, &view);
    Hands::click(view.addMessageButton);
    if (!waitForSheet(view.addMessageToRotationWindowController))
        return false;
    if (!addMessage(QStringLiteral("Welcome aboard. Be kind to newcomers.")) ||
        !addMessage(QStringLiteral("^3Friday night: ^7the harbour maps until ten.")))
        return false;
    QTest::keyClick(view.addMessageToRotationWindowController, Qt::Key_Escape);
    Hands::click(view.rotationPane->saveAsButton);
    auto *sheet = window().findChild<SaveRotationAsWindowController *>();
    if (!waitForSheet(sheet))
        return false;
    Hands::type(sheet->nameField, QStringLiteral("House rules"));
    Hands::click(sheet->saveButton);
    return expect(waitUntilIdle() && !view.rotationPane->labelUnsavedChanges->isVisible(),
                  QStringLiteral("the messages are saved"));
}

bool Journey::playMessages()
{
    MessagesView &view = *window().messagesView;
    const auto saidCount = [this] {
        return transcript().count(QLatin1String("say \""));
    };
    Hands::click(view.buttonStartMessageRotation);
    if (!expect(waitUntil([&] { return saidCount() == 2; }), QStringLiteral("both messages are said")))
        return false;
    const QString lastSecond = QStringLiteral("On air: message 2 of 2, 1 s left");
    if (!expect(waitUntil([&] { return view.onAirLabel->text() == lastSecond; }),
                QStringLiteral("the last message stays on air for its duration")))
        return false;
    takePicture(QStringLiteral("playing"));
    if (!expect(waitUntil([&] { return view.buttonStartMessageRotation->isEnabled(); }) && saidCount() == 2,
                QStringLiteral("playing ends after the last message")))
        return false;
    return expect(m_server.commandsSeen().filter(QLatin1String("say \"")).size() == 2,
                  QStringLiteral("the server gets both messages, once each"));
}

bool Journey::sendAQuickMessage()
{
    MessagesView &view = *window().messagesView;
    Hands::type(view.quickMessageTextField, QStringLiteral("Last round in "));
    Hands::click(view.colorButton);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!expect(menu != nullptr, QStringLiteral("the colours are shown")))
        return false;
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Down);
    QTest::keyClick(menu, Qt::Key_Return);
    QTest::keyClicks(view.quickMessageTextField, QStringLiteral("five minutes!"));
    takePicture(QStringLiteral("quick-message"));
    QTest::keyClick(view.quickMessageTextField, Qt::Key_Return);
    const QString command = QStringLiteral("say \"Last round in ^1five minutes!\"");
    if (!expect(waitUntil([&] { return view.quickMessageTextField->text().isEmpty(); }) && waitUntilIdle(),
                QStringLiteral("the quick message goes")))
        return false;
    return expect(m_server.commandsSeen().contains(command), QStringLiteral("the server gets the coloured message"));
}
