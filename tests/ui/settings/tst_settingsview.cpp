#include "SettingsFixture.h"

using Model = SettingsOutlineModel;

class SettingsViewTest : public QObject
{
    Q_OBJECT
private slots:
    void theSpaceBarTogglesBoxesFromEveryColumn()
    {
        SettingsFixture shown;
        for (const char *dvar : {"h_fire", "h_cam", "h_lost", "h_time"}) { // on, off, not known to the server, no box
            shown.tree().setCurrentIndex(shown.valueOf(dvar).siblingAtColumn(0));
            QTest::keyClick(&shown.tree(), Qt::Key_Space);
        }
        QCOMPARE(shown.sent(),
                 QStringList({"setadmindvar h_fire \"0\"", "setadmindvar h_cam \"1\"", "setadmindvar h_lost \"1\""}));
        QVERIFY(shown.alerts.shown().isEmpty());
    }

    void togglesWhatTheSessionSaysAtItsTurn()
    {
        SettingsFixture shown;
        shown.exchange.hold();
        shown.press("h_fire", Qt::Key_Space);
        shown.press("h_fire", Qt::Key_Space);
        QCOMPARE(shown.valueOf("h_fire").data(Qt::CheckStateRole), QVariant(Qt::Checked)); // as the session still says
        shown.exchange.release();
        QTRY_COMPARE(shown.exchange.keptCount(), 1);
        QCOMPARE(shown.valueOf("h_fire").data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
        shown.exchange.release();
        QCOMPARE(shown.sent(), QStringList({"setadmindvar h_fire \"0\"", "setadmindvar h_fire \"1\""}));
    }

    void aClickOnTheBoxSendsTheOpposite()
    {
        SettingsFixture shown;
        const QRect cell = shown.tree().visualRect(shown.valueOf("h_fire"));
        QTest::mouseClick(shown.tree().viewport(), Qt::LeftButton, {}, QPoint(cell.right() - 5, cell.center().y()));
        QTest::mouseClick(shown.tree().viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 10, cell.center().y()));
        QCOMPARE(shown.sent(), QStringList{"setadmindvar h_fire \"0\""});
    }

    void tellsWhatBecameOfAWrite_data()
    {
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("alert");
        QTest::addColumn<QString>("value");
        QTest::newRow("accepted") << int(RConResultSuccess) << "will take effect later" << QString() << "900";
        QTest::newRow("a failure is never read as a refusal") << int(RConResultTimeout) << "not a valid value %1"
                                                              << "Error setting dvar 'h_time': not a valid value %1"
                                                              << "20";
        QTest::newRow("turned down") << int(RConResultSuccess) << "'900' is not a valid value for h_time"
                                     << "'900' is not a valid value for h_time"
                                     << "850";
    }
    void tellsWhatBecameOfAWrite()
    {
        QFETCH(int, result);
        QFETCH(QString, reply);
        QFETCH(QString, alert);
        SettingsFixture shown;
        shown.exchange.answer("setadmindvar h_time \"900\"", Reply{RConResult(result), reply, false});
        shown.exchange.answer("h_time", ScriptedExchange::ok("\"h_time\" is: \"850\" in force: \"850\""));
        shown.exchange.hold();
        shown.type("h_time", "900");
        QTest::keyClick(shown.editor(), Qt::Key_Return);
        QTRY_COMPARE(shown.exchange.keptCount(), 1);
        shown.loadCatalogues(); // another setting takes the place of the one that was edited
        while (!shown.actions.isIdle()) {
            QTRY_VERIFY(shown.exchange.keptCount() == 1 || shown.actions.isIdle());
            if (shown.exchange.keptCount() == 1)
                shown.exchange.release();
        }
        QCOMPARE(shown.alerts.texts(), alert.isNull() ? QStringList() : QStringList{alert});
        QCOMPARE(shown.alerts.titles(), alert.isNull() ? QStringList() : QStringList{"Remote Command Failure"});
        QTEST(shown.shownValue("h_time"), "value");
    }

    void aRejectedValueStaysInTheField()
    {
        SettingsFixture shown;
        shown.type("world_gravity", "1.");
        QTest::keyClick(shown.editor(), Qt::Key_Return);
        QCoreApplication::processEvents();
        QVERIFY(shown.editor() != nullptr && shown.editor()->isVisible());
        QVERIFY(shown.isHintShown());
        QTest::keyClicks(shown.editor(), "5");
        QVERIFY(!shown.isHintShown());
        QTest::keyClick(shown.editor(), Qt::Key_Escape);
        QTRY_VERIFY(shown.editor() == nullptr);
        QCOMPARE(shown.shownValue("world_gravity"), QString("-.5"));
        QVERIFY(shown.exchange.sent().isEmpty());
    }

    void writesOnlyWhatTheGameCanHold()
    {
        SettingsFixture shown;
        shown.settings.setSelectedSettingList("About");
        shown.type("house_greeting", {});
        shown.editor()->setText({});
        shown.editor()->insert(u"\u0436"_qs);
        QTest::keyClicks(shown.editor(), "a");
        QTest::keyClick(shown.editor(), Qt::Key_Return);
        QCoreApplication::processEvents();
        QVERIFY(shown.editor() != nullptr && shown.editor()->isVisible() && shown.isHintShown());
        QCOMPARE(shown.editor()->text(), u"\u0436a"_qs); // not lost
        QVERIFY(shown.exchange.sent().isEmpty());
        shown.editor()->setText(u"\u201cb\u201d"_qs);
        QTest::keyClicks(shown.editor(), "!");
        QVERIFY(!shown.isHintShown());
        QTest::keyClick(shown.editor(), Qt::Key_Return);
        QTRY_VERIFY(shown.editor() == nullptr);
        QCOMPARE(shown.sent(), QStringList{"setadmindvar house_greeting \"'b'!\""});
        QCOMPARE(shown.shownValue("house_greeting"), QString("'b'!"));
    }

    void anotherWindowInFrontLeavesTheTyping()
    {
        SettingsFixture shown;
        QVERIFY(QTest::qWaitForWindowActive(&shown.view));
        shown.type("h_time", "4");
        QWidget another;
        another.show();
        another.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&another));
        QVERIFY(shown.editor() != nullptr && shown.editor()->text() == "4");
        QVERIFY(shown.exchange.sent().isEmpty());
    }

    void aPasswordIsNotSeen()
    {
        SettingsFixture shown;
        shown.write("gameSettingsUnranked", "<s><SettingInst><name>Access</name>" +
                                                settingXml("Join", "door_password", "string", "Access") +
                                                "</SettingInst></s>");
        awaited(shown.settings.loadSettings());
        shown.server.addDvarLine(u"door_password \"zyx\"");
        QCOMPARE(shown.shownValue("door_password"), QString("********"));
        QVERIFY(!shown.valueOf("door_password").data(Qt::ToolTipRole).toString().contains("zyx"));
        shown.press("door_password", Qt::Key_F2);
        QCOMPARE(shown.editor()->text(), QString("zyx"));
        QVERIFY(!shown.editor()->displayText().contains('z'));
    }

    void leavingTheFieldReturnsTheOldValue()
    {
        SettingsFixture shown;
        QVERIFY(QTest::qWaitForWindowActive(&shown.view));
        shown.type("h_time", "soon");
        shown.filterField()->setFocus();
        QTRY_VERIFY(shown.editor() == nullptr);
        QVERIFY(!shown.isHintShown());
        QCOMPARE(shown.shownValue("h_time"), QString("20"));
        shown.type("h_time", "25");
        shown.filterField()->setFocus();
        QTRY_COMPARE(shown.exchange.sent(), QStringList{"setadmindvar h_time \"25\""});
        QVERIFY(shown.settle());
    }

    void theSessionDoesNotOverwriteTheTyping()
    {
        SettingsFixture shown;
        shown.type("h_time", "4");
        awaited(shown.server.setDvar("h_time", "15"));
        QCOMPARE(shown.editor()->text(), QString("4"));
        QTest::keyClick(shown.editor(), Qt::Key_Escape);
        QTRY_VERIFY(shown.editor() == nullptr);
        // A field that nobody has typed into follows, and writes nothing back.
        shown.press("h_time", Qt::Key_Return);
        awaited(shown.server.setDvar("h_time", "16"));
        QCOMPARE(shown.editor()->text(), QString("16"));
        shown.exchange.forgetSent();
        QTest::keyClick(shown.editor(), Qt::Key_Return);
        QCOMPARE(shown.sent(), QStringList());
    }

    void writesTheLastOfTwo()
    {
        SettingsFixture shown;
        shown.exchange.hold();
        QVERIFY(shown.outline().setData(shown.valueOf("h_time"), "30"));
        QVERIFY(shown.valueOf("h_time").data(Model::IsPendingRole).toBool());
        QVERIFY(!shown.valueOf("world_gravity").data(Model::IsPendingRole).toBool());
        // What the row still shows is no longer what the server has when this one's turn comes.
        QVERIFY(shown.outline().setData(shown.valueOf("h_time"), "20"));
        shown.exchange.release();
        QTRY_COMPARE(shown.exchange.keptCount(), 1);
        shown.exchange.release();
        QCOMPARE(shown.sent(), QStringList({"setadmindvar h_time \"30\"", "setadmindvar h_time \"20\""}));
        QCOMPARE(shown.shownValue("h_time"), QString("20"));
        QVERIFY(!shown.valueOf("h_time").data(Model::IsPendingRole).toBool());
    }

    void outlivesAReload()
    {
        SettingsFixture shown;
        shown.exchange.hold();
        shown.press("h_fire", Qt::Key_Space);
        shown.press("h_cam", Qt::Key_Space);
        QVERIFY(shown.outline().setData(shown.valueOf("h_time"), "30"));
        shown.write("gameSettingsUnranked", "<s/>");
        awaited(shown.settings.loadSettings());
        QVERIFY(shown.shownNames(shown.tree()).isEmpty());
        QVERIFY(shown.answerInOrder(
            {"setadmindvar h_fire \"0\"", "setadmindvar h_cam \"1\"", "setadmindvar h_time \"30\""}));
    }
};

QTEST_MAIN(SettingsViewTest)
#include "tst_settingsview.moc"
