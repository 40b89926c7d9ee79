#include "AddMessageToRotationWindowController.h"
#include "ColorPreview.h"
#include "KelMessageRotation.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "SessionFixture.h"
#include "TestPreferences.h"

#include <QLabel>
#include <QPushButton>

struct Messages : SessionFixture {
    Messages() { connectToServer(); }

    TestPreferences preferences{folder};
    KelMessageRotation messageRotations{{preferences, alerts, server, actions}, folder.path()};
    MessagesView view{messageRotations, actions, alerts, preferences};
};

class MessagesViewTest : public QObject
{
    Q_OBJECT
private slots:
    void playsAndMarks_data()
    {
        QTest::addColumn<QString>("duration");
        QTest::addColumn<QString>("state");
        QTest::newRow("seconds") << "60.5"
                                 << "60 s left";
        QTest::newRow("no number") << "x"
                                   << "until Stop is pressed";
    }
    void playsAndMarks()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        QFETCH(QString, duration);
        awaited(messages.messageRotations.addEntries({{"say \"hi\"", duration}, {"b", "2"}}));
        QVERIFY(!messages.view.buttonStopMessageRotation->isEnabled());
        messages.exchange.hold();
        messages.view.buttonStartMessageRotation->click();
        QCOMPARE(messages.view.onAirLabel->text(), QString("On air: message 1 of 2, being sent"));
        messages.exchange.release();
        QVERIFY(messages.settle());
        QCOMPARE(messages.exchange.sent(), QStringList("say \"say \\\"hi\\\"\""));
        QTEST(messages.view.onAirLabel->text().section(", ", 1), "state");
        messages.messageRotations.deleteAllItems();
        QTEST(messages.view.onAirLabel->text().section(", ", 1), "state");
        QVERIFY(!messages.view.buttonStartMessageRotation->isEnabled());
        messages.view.buttonStopMessageRotation->click();
        QCOMPARE(messages.view.onAirLabel->text(), QString("Stopped"));
    }

    void sendsAQuickMessageAsItStands()
    {
        Messages messages;
        QuickMessageField &field = *messages.view.quickMessageTextField;
        field.setText("a \"b\" ");
        field.insertColorCode(1);
        QCOMPARE(messages.view.colorPreview->accessibleName(), QString("Players will see: a \"b\" "));
        field.insert("c\u20ac");
        QCOMPARE(messages.view.colorPreview->accessibleName(),
                 QString("Players will see: White (default): a \"b\" ; Red: c\u20ac"));
        QVERIFY(!messages.view.unsendableLabel->isHidden());
        field.backspace();
        messages.exchange.hold();
        messages.view.quickMessageButtonPressed();
        messages.view.quickMessageButtonPressed(); // twice by mistake
        QTRY_COMPARE(messages.exchange.keptCount(), 1);
        messages.exchange.release(); // nothing answers: it goes all the same
        QVERIFY(messages.settle());
        QCOMPARE(messages.exchange.sent(), QStringList("say \"a \"b\" ^1c\""));
        QCOMPARE(messages.alerts.texts(), QStringList("'Say' returned an error: no answer"));
        QCOMPARE(field.text(), QString());
    }

    void messagesAreAddedUntilTheSheetIsClosed()
    {
        QStringList added;
        AddMessageToRotationWindowController sheet([&](const QString &message, const QString &duration) {
            added << message << duration;
            return added.size() < 4;
        });
        sheet.show();
        sheet.messageTextField->setText(" hi ");
        QVERIFY(!sheet.addButtonEnabled());
        sheet.durationTextField->setText("soon");
        QVERIFY(sheet.findChild<QLabel *>("unsendableLabel")->isHidden());
        QVERIFY(sheet.findChild<QLabel *>("durationHint")->text().contains("until Stop is pressed"));
        sheet.addButton->click();
        sheet.addButton->click(); // without a message
        sheet.messageTextField->setText("\u0142");
        QVERIFY(sheet.findChild<QLabel *>("unsendableLabel")->isVisible());
        QCOMPARE(added, QStringList({" hi ", "soon"}));
        sheet.addButton->click(); // no room
        QCOMPARE(sheet.messageTextField->text() + sheet.durationTextField->text(), QString("\u0142soon"));
        QVERIFY(sheet.isVisible() && sheet.focusWidget() == sheet.messageTextField);
    }
};

QTEST_MAIN(MessagesViewTest)
#include "tst_messagesview.moc"
