#include "AddMessageToRotationWindowController.h"
#include "ColorPreview.h"
#include "Controls.h"
#include "KelMessageRotation.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "SessionFixture.h"
#include "TestPreferences.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

struct Messages : SessionFixture {
    Messages() { connectToServer(); }

    QPushButton &button(const char *name) const { return *control<QPushButton>(view, name); }
    QString onAir() const { return control<QLabel>(view, "onAirLabel")->text(); }
    QString preview() const { return control<ColorPreview>(view, "colorPreview")->accessibleName(); }

    TestPreferences preferences{folder};
    KelMessageRotation messageRotations{{preferences, alerts, server, actions}, folder.path()};
    MessagesView view{messageRotations, actions, alerts, preferences};
};

class MessagesViewTest : public QObject
{
    Q_OBJECT
private slots:
    void playsAndMarks()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        awaited(messages.messageRotations.addEntries({{"say \"hi\"", "60.5"}, {"b", "2"}}));
        messages.exchange.hold();
        messages.button("buttonStartMessageRotation").click();
        QCOMPARE(messages.onAir(), QString("On air: message 1 of 2, being sent"));
        messages.exchange.release();
        QVERIFY(messages.settle());
        QCOMPARE(messages.exchange.sent(), QStringList("say \"say \\\"hi\\\"\""));
        messages.messageRotations.deleteAllItems(); // the one on air stays there
        QVERIFY(messages.onAir().endsWith(", 60 s left"));
        QVERIFY(!messages.button("buttonStartMessageRotation").isEnabled());
        messages.button("buttonStopMessageRotation").click();
        QCOMPARE(messages.onAir(), QString("Stopped"));
    }

    void startsWithWhatIsBeingTyped()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        awaited(messages.messageRotations.addEntries({{"old", "60"}}));
        messages.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&messages.view));
        auto *table = control<QTableView>(messages.view, "messageRotationTableView");
        table->edit(table->model()->index(0, 0));
        QTest::keyClicks(QApplication::focusWidget(), "typed");
        messages.button("buttonStartMessageRotation").click(); // as its menu does, which takes no focus
        QCOMPARE(messages.sent(), QStringList("say \"typed\""));
    }

    void sendsAQuickMessageAsItStands()
    {
        Messages messages;
        QuickMessageField &field = *control<QuickMessageField>(messages.view, "quickMessageTextField");
        field.setText("a \"b\" ");
        field.setCursorPosition(1);
        field.insertColorCode(2); // where is typed
        QCOMPARE(field.text(), QString("a^2 \"b\" "));
        field.setText("a \"b\" ");
        field.insertColorCode(1);
        field.insert("c");
        QCOMPARE(messages.preview(), QString("Players will see: White (default): a \"b\" ; Red: c"));
        messages.exchange.hold();
        messages.view.quickMessageButtonPressed();
        messages.view.quickMessageButtonPressed(); // twice by mistake
        QTRY_COMPARE(messages.exchange.keptCount(), 1);
        QCOMPARE(field.text(), QString());
        QTest::keyClicks(&field, "next");
        messages.exchange.release(); // nothing answers: it goes all the same
        QVERIFY(messages.settle());
        QCOMPARE(messages.exchange.sent(), QStringList("say \"a \"b\" ^1c\""));
        QCOMPARE(messages.alerts.texts(), QStringList("'Say' returned an error: no answer"));
        QCOMPARE(field.text(), QString("next"));
        QTest::keyClick(&field, Qt::Key_Return);
        QTRY_COMPARE(messages.exchange.keptCount(), 1);
        messages.exchange.release();
        QCOMPARE(messages.sent().last(), QString("say \"next\""));
    }

    void aMessageThatWasNotSentComesBack()
    {
        Messages messages;
        QuickMessageField &field = *control<QuickMessageField>(messages.view, "quickMessageTextField");
        messages.exchange.hold();
        field.setText("first");
        QTest::keyClick(&field, Qt::Key_Return);
        QTRY_COMPARE(messages.exchange.keptCount(), 1);
        field.setText("second");
        QTest::keyClick(&field, Qt::Key_Return); // waits
        QCOMPARE(field.text(), QString());
        messages.actions.refuseWaiting();
        QTRY_COMPARE(field.text(), QString("second"));
        QVERIFY(messages.preview().contains("second"));
        messages.exchange.release();
        QCOMPARE(messages.sent(), QStringList("say \"first\""));
    }

    void keepsAQuickMessageThatTheGameCannotHold()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        QuickMessageField &field = *control<QuickMessageField>(messages.view, "quickMessageTextField");
        const QLabel &label = *control<QLabel>(messages.view, "unsendableLabel");
        field.setText(u"hi \u0436\u20ac"_qs);
        QCOMPARE(label.text(), u"The game cannot show these characters: \u0436 \u20ac. It would not be sent."_qs);
        messages.view.quickMessageButtonPressed();
        QCOMPARE(messages.sent(), QStringList());
        const QString told =
            u"'Say' returned an error: The game cannot show these characters: \u0436 \u20ac. Nothing was sent."_qs;
        QCOMPARE(messages.alerts.texts(), QStringList(told));
        QCOMPARE(field.text(), u"hi \u0436\u20ac"_qs);
        field.setText(u"\u201cDon\u2019t\u201d\u2026"_qs);
        QVERIFY(label.isHidden());
        messages.view.quickMessageButtonPressed();
        QCOMPARE(messages.sent(), QStringList("say \"'Don't'...\""));
        QVERIFY(field.text().isEmpty());
    }

    void oneSheetAddsMessages()
    {
        Messages messages;
        for (int press = 0; press < 2; ++press)
            messages.button("addMessageButton").click();
        QCOMPARE(messages.view.findChildren<AddMessageToRotationWindowController *>().size(), 1);
    }

    void messagesAreAddedUntilTheSheetIsClosed()
    {
        QStringList added;
        AddMessageToRotationWindowController sheet([&](const QString &message, const QString &duration) {
            added << message << duration;
            return added.size() < 4;
        });
        auto *message = control<QLineEdit>(sheet, "messageTextField");
        auto *duration = control<QLineEdit>(sheet, "durationTextField");
        auto *add = control<QPushButton>(sheet, "addButton");
        sheet.show();
        message->setText(" hi ");
        QVERIFY(!sheet.addButtonEnabled());
        duration->setText("soon");
        QVERIFY(control<QLabel>(sheet, "unsendableLabel")->isHidden());
        QVERIFY(control<QLabel>(sheet, "durationHint")->text().contains("until Stop is pressed"));
        add->click();
        add->click(); // without a message
        message->setText("\u0142");
        QVERIFY(control<QLabel>(sheet, "unsendableLabel")->isVisible());
        QCOMPARE(added, QStringList({" hi ", "soon"}));
        add->click(); // no room
        QCOMPARE(message->text() + duration->text(), QString("\u0142soon"));
        QVERIFY(sheet.isVisible() && sheet.focusWidget() == message);
    }
};

QTEST_MAIN(MessagesViewTest)
#include "tst_messagesview.moc"
