#include "SettingsFixture.h"

using Mode = SettingsView::Mode;
using Model = SettingsOutlineModel;

class SettingsOutlineTest : public QObject
{
    Q_OBJECT
private slots:
    void showsTheChosenGroup_data()
    {
        QTest::addColumn<Mode>("mode");
        QTest::newRow("unrankedOutlineView") << Mode::Unranked;
        QTest::newRow("rankedOutlineView") << Mode::Ranked;
    }
    void showsTheChosenGroup()
    {
        QFETCH(Mode, mode);
        SettingsFixture shown(mode);
        QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Limits", "  Gravity", "  Time limit", "rules",
                                                              "  Hits among mates", "  Lost switch", "  Replay"}));
        QCOMPARE(shown.shownValue("h_time"), QString("20"));
        QTest::keyClick(control<QListWidget>(shown.view, "settingsGroupList"), Qt::Key_Down);
        QCOMPARE(shown.settings.selectedSettingList(), QString("About"));
        QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Texts", "  Message"}));
        shown.server.disconnect();
        QVERIFY(shown.shownNames(shown.tree()).isEmpty()); // the values are of a server that has gone
    }

    void writesASettingOfTheChosenGametype()
    {
        SettingsFixture shown;
        const QTreeView &tree = *control<QTreeView>(shown.view, "gametypeOutlineView");
        QTest::keyClick(control<QListWidget>(shown.view, "gametypeList"), Qt::Key_Down);
        QCOMPARE(shown.gametypes.selectedSettingList()->name(), QString("Duckboard"));
        QVERIFY(shown.shownNames(tree).isEmpty());
        shown.gametypes.setSelectedSettingList(shown.gametypes.arrangedGametypes().first());
        const QModelIndex value = tree.model()->index(0, Model::ValueColumn, tree.model()->index(0, 0));
        QVERIFY(tree.model()->setData(value, "75"));
        QCOMPARE(shown.sent(), QStringList{"setadmindvar rule_score \"75\""});
        QCOMPARE(value.data().toString(), QString("75"));
    }

    void marksChangesAndReverts()
    {
        SettingsFixture shown;
        const auto revert = [&shown](const QString &dvar) {
            shown.tree().setCurrentIndex(shown.valueOf(dvar));
            return shown.menuAction("Revert");
        };
        QVERIFY(!shown.valueOf("h_time").data(Model::IsChangedRole).toBool());
        QVERIFY(!revert("h_time")->isEnabled());

        awaited(shown.server.setDvar("h_time", "30"));
        QVERIFY(shown.valueOf("h_time").data(Model::IsChangedRole).toBool());
        QVERIFY(shown.valueOf("h_time").data(Qt::ToolTipRole).toString().contains("Was: 20"));
        revert("h_time")->trigger();
        QCOMPARE(shown.sent().last(), QString("setadmindvar h_time \"20\""));
        QVERIFY(!shown.valueOf("h_time").data(Model::IsChangedRole).toBool());

        // The next connect starts afresh, and until it has come to its end nothing counts as changed.
        awaited(shown.server.setDvar("h_time", "30"));
        shown.dump("40");
        bool isMarkedEarly = false;
        const QObject listening; // goes before what it counts
        connect(&shown.server, &KelServer::dvarListChanged, &listening, [&] {
            const bool isMarked = shown.valueOf("h_time").data(Model::IsChangedRole).toBool();
            isMarkedEarly = isMarkedEarly || (isMarked && shown.server.dvarList().value("h_time") != "30");
        });
        shown.connectToServer();
        QVERIFY(!isMarkedEarly);
        QCOMPARE(shown.shownValue("h_time"), QString("40"));
        QVERIFY(!shown.valueOf("h_time").data(Model::IsChangedRole).toBool());
    }

    void showsWhatIsStillToComeAndAsksAgain()
    {
        SettingsFixture shown;
        const auto askAgain = [&shown](const QString &dvar) {
            shown.tree().setCurrentIndex(shown.valueOf(dvar));
            return shown.menuAction("Ask Again");
        };
        shown.exchange.answer("h_lost", ScriptedExchange::ok("Unknown command \"h_lost\"\n"));
        shown.connectAndFetch();
        QCOMPARE(shown.shownValue("h_lost"), u"asking…"_qs);
        QVERIFY(askAgain("h_lost") == nullptr);
        shown.releaseUntilToldOf("h_lost");
        QTRY_COMPARE(shown.shownValue("h_lost"), QString("not on this server"));
        shown.exchange.answer("h_lost", ScriptedExchange::failure());
        askAgain("h_lost")->trigger();
        shown.releaseUntilToldOf("h_lost");
        QTRY_COMPARE(shown.shownValue("h_lost"), QString("no answer"));
        QVERIFY(shown.alerts.shown().isEmpty());
        shown.exchange.answer("h_lost", ScriptedExchange::ok("\"h_lost\" is: \"1\" in force: \"1\"\n"));
        QVERIFY(askAgain("h_time") == nullptr && askAgain("h_lost") != nullptr);
        askAgain("h_lost")->trigger();
        shown.releaseUntilToldOf("h_lost");
        QCOMPARE(shown.valueOf("h_lost").data(Qt::CheckStateRole), QVariant(Qt::Checked));
        QVERIFY(!shown.valueOf("h_lost").data(Model::IsChangedRole).toBool()); // it only came later
        QVERIFY(askAgain("h_lost") == nullptr);
    }

    void aValueThatIsWrittenBeforeItComesIsAChange()
    {
        SettingsFixture shown;
        shown.settings.setSelectedSettingList("Match");
        shown.view.setInFront(true);
        shown.connectAndFetch();
        shown.exchange.answer("h_lost", ScriptedExchange::failure());
        shown.exchange.release(); // its reply is lost, and the write comes before it is asked for again
        QVERIFY(shown.outline().setData(shown.valueOf("h_lost"), {}, Qt::CheckStateRole));
        QTRY_COMPARE(shown.exchange.sent().last(), QString("setadmindvar h_lost \"1\""));
        shown.exchange.answer("h_lost", ScriptedExchange::ok("\"h_lost\" is: \"1\" in force: \"1\"\n"));
        shown.exchange.release();
        shown.releaseUntilToldOf("h_lost");
        QVERIFY(shown.valueOf("h_lost").data(Model::IsChangedRole).toBool());
        QCOMPARE(shown.valueOf("h_lost").data(Qt::AccessibleDescriptionRole).toString(), QString("Was: not known"));
    }

    void whatIsLookedAtComesFirst()
    {
        SettingsFixture shown;
        shown.write("gameSettingsUnranked",
                    "<s><SettingInst><name>Z</name>" + settingXml("Z", "z_1", "int", "c") +
                        "</SettingInst><SettingInst><name>A</name>" + settingXml("M1", "m_1", "int", "c") +
                        settingXml("M2", "m_2", "int", "c") + settingXml("M3", "m_3", "int", "c") +
                        "</SettingInst><SettingInst><name>Y</name>" + settingXml("Y", "y_1", "int", "c") +
                        "</SettingInst></s>"); // a connect chooses the first, and asks in the order of their names
        shown.connectAndFetch();
        shown.view.setInFront(true);
        shown.exchange.release();
        QTRY_COMPARE(shown.exchange.sent().last(), QString("z_1"));
        shown.settings.setSelectedSettingList("Y");
        shown.exchange.release();
        QTRY_COMPARE(shown.exchange.sent().last(), QString("y_1"));
    }

    void theFilterKeepsWhatWasChosenAndClosed()
    {
        SettingsFixture shown;
        shown.tree().setCurrentIndex(shown.valueOf("h_cam"));
        shown.tree().collapse(shown.outline().index(0, 0));
        for (const char *typed : {"g", "h_time"}) // letter by letter
            shown.filterField()->setText(typed);
        QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Limits", "  Time limit"}));
        awaited(shown.server.setDvar("h_cam", "1")); // while it is hidden
        shown.filterField()->clear();
        QCOMPARE(shown.outline().settingAt(shown.tree().currentIndex())->dvar(), QString("h_cam"));
        QCOMPARE(shown.valueOf("h_cam").data(Qt::CheckStateRole), QVariant(Qt::Checked));
        QVERIFY(!shown.tree().isExpanded(shown.outline().index(0, 0)));
    }
};

QTEST_MAIN(SettingsOutlineTest)
#include "tst_settingsoutline.moc"
