#include "AddMessageToRotationWindowController.h"
#include "ColorPreview.h"
#include "Controls.h"
#include "KelMessageRotation.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "SessionFixture.h"
#include "TabOrder.h"
#include "TestPreferences.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
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
        QVERIFY(!messages.button("buttonStopMessageRotation").isEnabled());
        messages.exchange.hold();
        messages.button("buttonStartMessageRotation").click();
        QCOMPARE(messages.onAir(), QString("On air: message 1 of 2, being sent"));
        messages.exchange.release();
        QVERIFY(messages.settle());
        QCOMPARE(messages.exchange.sent(), QStringList("say \"say \\\"hi\\\"\""));
        QTEST(messages.onAir().section(", ", 1), "state");
        messages.messageRotations.deleteAllItems();
        QTEST(messages.onAir().section(", ", 1), "state");
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
        QCOMPARE(messages.preview(), QString("Players will see: a \"b\" "));
        field.insert("c\u20ac");
        QCOMPARE(messages.preview(), QString("Players will see: White (default): a \"b\" ; Red: c\u20ac"));
        QVERIFY(!control<QLabel>(messages.view, "unsendableLabel")->isHidden());
        field.backspace();
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

    void theLoopBoxIsKept()
    {
        Messages messages;
        auto *box = control<QCheckBox>(messages.view, "checkBoxLoopMessages");
        for (const bool isOn : {true, false}) {
            box->setChecked(isOn);
            QCOMPARE(messages.preferences.boolValue("checkBoxLoopMessages"), isOn);
            const MessagesView later(messages.messageRotations, messages.actions, messages.alerts,
                                     messages.preferences);
            QCOMPARE(control<QCheckBox>(later, "checkBoxLoopMessages")->isChecked(), isOn);
        }
    }

    void anEditIsMarkedAsUnsaved()
    {
        Messages messages;
        const auto *mark = control<QLabel>(messages.view, "labelUnsavedChanges");
        awaited(messages.messageRotations.addEntries({{"a", "60"}}));
        QTRY_VERIFY(!mark->isHidden());
        QVERIFY(awaited(messages.messageRotations.saveUIChanges("n")));
        QTRY_VERIFY(mark->isHidden());
        QAbstractItemModel &model = *messages.messageRotations.tableModel();
        QVERIFY(model.setData(model.index(0, 1), "61"));
        QTRY_VERIFY(!mark->isHidden());
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

    void nothingStartsWithoutAConnection()
    {
        Messages messages;
        awaited(messages.messageRotations.addEntries({{"a", "60"}}));
        QVERIFY(messages.button("buttonStartMessageRotation").isEnabled());
        messages.server.disconnect();
        QVERIFY(!messages.button("buttonStartMessageRotation").isEnabled());
        QCOMPARE(messages.onAir(), QString("Stopped"));
        messages.connectToServer();
        QVERIFY(messages.button("buttonStartMessageRotation").isEnabled());
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

    void tellsOfARotationsMessageThatTheGameCannotHold()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        awaited(messages.messageRotations.addEntries({{u"\u0436"_qs, "1000"}, {u"\u201chi\u201d"_qs, "1000"}}));
        messages.button("buttonStartMessageRotation").click();
        QCOMPARE(messages.sent(), QStringList());
        QVERIFY(messages.alerts.texts().join('|').contains(u"these characters: \u0436. Nothing"_qs));
        messages.messageRotations.advanceRotation();
        QCOMPARE(messages.sent(), QStringList("say \"'hi'\""));
        QCOMPARE(messages.messageRotations.entries().last()->message, u"\u201chi\u201d"_qs); // the file keeps it
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

    void oneSheetAddsMessages()
    {
        Messages messages;
        for (int press = 0; press < 2; ++press)
            messages.button("addMessageButton").click();
        QCOMPARE(messages.view.findChildren<AddMessageToRotationWindowController *>().size(), 1);
    }

    void itsMenuPressesItsButtons()
    {
        Messages messages;
        messages.exchange.answerEverything(ScriptedExchange::ok());
        awaited(messages.messageRotations.addEntries({{"a", "60"}}));
        QMenu menu;
        messages.view.fillMenu(menu);
        QCOMPARE(entriesOf(menu), QStringList({"&Add Message…", "-", "&Start", "S&top"}));
        menu.actions().at(2)->trigger();
        QCOMPARE(messages.sent(), QStringList("say \"a\""));
        menu.actions().at(3)->trigger();
        QCOMPARE(messages.onAir(), QString("Stopped"));
        menu.actions().at(0)->trigger();
        QVERIFY(control<QDialog>(messages.view, "AddMessageToRotationWindowController")->isVisible());
    }

    void theFocusGoesToTheMessagesAndTabThroughAllControls()
    {
        Messages messages;
        awaited(messages.messageRotations.addEntries({{"a", "60"}}));
        messages.view.show();
        QVERIFY(QTest::qWaitForWindowActive(&messages.view));
        messages.view.setFocus();
        QCOMPARE(tabOrder(messages.view, "quickMessageButton"),
                 QStringList({"messageRotationTableView", "addMessageButton", "removeAllButton", "newButton",
                              "saveButton", "saveAsButton", "buttonStartMessageRotation", "checkBoxLoopMessages",
                              "quickMessageTextField", "colorButton", "quickMessageButton"}));
    }
};

QTEST_MAIN(MessagesViewTest)
#include "tst_messagesview.moc"
