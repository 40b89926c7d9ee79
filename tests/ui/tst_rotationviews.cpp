#include "ColorPreview.h"
#include "ElidingLabel.h"
#include "FormMainView.h"
#include "KeyHandlingTableView.h"
#include "MapsFixture.h"
#include "MessagesView.h"
#include "QuickMessageField.h"
#include "RotationPane.h"

#include <QLineEdit>

struct Messages : Fixture {
    Messages() { connectToServer(); }

    MessagesView view{messageRotations, actions, alerts, preferences};
};

struct UnsavedWindow : MapsFixture {
    UnsavedWindow()
    {
        view.makeViews();
        alerts.hold();
    }

    /// A message that no file holds.
    void edit() { awaited(messageRotations.addMessageToCurrentRotation("typed", "5")); }

    FormMainView view{server, actions, alerts, preferences, catalogues(), rotations(), savedServers};
};

class RotationViewsTest : public QObject
{
    Q_OBJECT
private slots:
    void setsTheBuiltRotation_data()
    {
        QTest::addColumn<int>("failing"); // which of the commands
        QTest::addColumn<int>("sent");
        QTest::addColumn<QString>("alert");
        QTest::newRow("all is well") << -1 << 6 << "";
        QTest::newRow("first write") << 0 << 1 << "'sv_mapRotation' returned an error: lost";
        QTest::newRow("second write") << 1 << 2 << "'sv_mapRotationCurrent' returned an error: lost";
        QTest::newRow("start") << 2 << 3 << "'map_rotate' returned an error: lost";
    }
    void setsTheBuiltRotation()
    {
        QFETCH(int, failing);
        QFETCH(int, sent);
        Maps maps;
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Domination"}, {"Ropeway", "Domination"}}));
        awaited(maps.view.updateMapList(255));
        maps.exchange.forgetSent();
        const QString text = "gametype dom map mp_saltworks gametype dom map mp_ropeway";
        const QStringList commands{QString("setadmindvar sv_mapRotation \"%1\"").arg(text),
                                   QString("setadmindvar sv_mapRotationCurrent \"%1\"").arg(text), "map_rotate"};
        for (int i = 0; i < commands.size(); ++i)
            maps.exchange.answer(commands.at(i),
                                 i == failing ? ScriptedExchange::failure("lost") : ScriptedExchange::ok());
        maps.view.setBuiltRotationButtonPressed();
        QVERIFY(maps.settle());
        const QStringList all = commands + QStringList{"g_gametype", "mapname", "sv_mapRotation"};
        QCOMPARE(maps.exchange.sent(), all.first(sent));
        QTEST(maps.alerts.texts().join("|"), "alert");
        QCOMPARE(maps.rotation().isEmpty(), failing >= 0);
    }

    void refusesUnknownNames()
    {
        Maps maps;
        maps.choose("Domination", "Saltworks");
        awaited(maps.mapRotations.addEntries({{"Saltworks", "Domination"}, {"Nowhere", "Domination"}}));
        maps.view.setBuiltRotationButtonPressed();
        QVERIFY(maps.settle());
        QCOMPARE(maps.exchange.sent(), QStringList());
        QCOMPARE(maps.alerts.titles(), QStringList("Rotation Not Set"));
        QVERIFY(maps.alerts.texts().first().contains("Nowhere"));
    }

    void copiesTheServersRotation()
    {
        Maps maps;
        awaited(maps.view.updateMapList(255));
        awaited(maps.mapRotations.saveUIChanges("mine"));
        maps.view.copyCurrentMapRotationToBuilderButtonPressed();
        QVERIFY(maps.settle());
        QStringList copied;
        for (const auto &entry : maps.mapRotations.entries())
            copied.append(entry->map + "/" + entry->gametype);
        QCOMPARE(copied, QStringList({"Ropeway/Team Match", "Millrace/Domination", "mp_new/Domination"}));
        QCOMPARE(maps.view.rotationPane->labelCurrentRotation->text(), QString("Rotation: mine"));
        QVERIFY(maps.mapRotations.unsavedChanges());
    }

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

    void asksBeforeUnsavedWorkIsLost_data()
    {
        QTest::addColumn<bool>("isClosing");
        QTest::addColumn<int>("pressed");
        QTest::addColumn<bool>("goesOn");
        QTest::newRow("connect, no") << false << 1 << true;
        QTest::newRow("connect, cancel") << false << 2 << false;
        QTest::newRow("close, no") << true << 1 << true;
        QTest::newRow("close, cancel") << true << 2 << false;
    }
    void asksBeforeUnsavedWorkIsLost()
    {
        QFETCH(bool, isClosing);
        QFETCH(int, pressed);
        QFETCH(bool, goesOn);
        UnsavedWindow window;
        window.view.show();
        if (isClosing) {
            window.edit();
            window.view.close();
        } else {
            window.view.connectTo(ConnectTarget{"L", "10.0.0.1", "28960", "p", nullptr});
            window.edit(); // while a worker reads the catalogue
        }
        QTRY_COMPARE(window.alerts.openCount(), 1);
        QCOMPARE(window.alerts.shown().last().buttons, QStringList({"Yes", "No", "Cancel"}));
        QVERIFY(window.view.isVisible() && window.exchange.sent().isEmpty());
        window.alerts.dismiss(pressed);
        if (isClosing) {
            QTRY_COMPARE(window.view.isVisible(), !goesOn);
        } else {
            QTRY_COMPARE(window.exchange.sent().contains("dvardump"), goesOn);
            window.view.disconnectButtonPressed();
        }
        if (!goesOn)
            QCOMPARE(window.messageRotations.entries().size(), 1);
        while (window.alerts.openCount() > 0)
            window.alerts.dismiss(1);
        QVERIFY(window.settle());
    }
};

QTEST_MAIN(RotationViewsTest)
#include "tst_rotationviews.moc"
