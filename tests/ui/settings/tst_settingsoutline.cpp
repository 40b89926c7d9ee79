#include "SettingsFixture.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

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
        QCOMPARE(control<QTreeView>(shown.view, QTest::currentDataTag()), &shown.tree());
        QCOMPARE(shown.view.findChild<QWidget *>("gametypeList") != nullptr, mode == Mode::Unranked);
        QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Limits", "  Gravity", "  Time limit", "rules",
                                                              "  Hits among mates", "  Lost switch", "  Replay"}));
        QCOMPARE(shown.shownValue("h_time"), QString("20"));

        auto *groups = control<QListWidget>(shown.view, "settingsGroupList");
        QTest::keyClick(groups, Qt::Key_Down);
        QCOMPARE(shown.settings.selectedSettingList(), QString("About"));
        QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Texts", "  Message"}));
        shown.tree().collapseAll();
        shown.settings.setSelectedSettingList("Match");
        QCOMPARE(groups->currentRow(), 0);
        QCOMPARE(shown.shownNames(shown.tree()).size(), 7);
    }

    void showsTheChosenGametype()
    {
        SettingsFixture shown;
        const QTreeView &tree = *control<QTreeView>(shown.view, "gametypeOutlineView");
        auto *list = control<QListWidget>(shown.view, "gametypeList");
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(shown.gametypes.selectedSettingList()->name(), QString("Duckboard"));
        QVERIFY(shown.shownNames(tree).isEmpty());
        shown.gametypes.setSelectedSettingList(shown.gametypes.arrangedGametypes().first());
        QCOMPARE(list->currentRow(), 0);
        QCOMPARE(shown.shownNames(tree), QStringList({"Limits", "  Score limit"}));
        const QModelIndex value = tree.model()->index(0, Model::ValueColumn, tree.model()->index(0, 0));
        QVERIFY(tree.model()->setData(value, "75"));
        QCOMPARE(shown.sent(), QStringList{"setadmindvar rule_score \"75\""});
        QCOMPARE(value.data().toString(), QString("75"));
    }

    void tellsCellsApart()
    {
        SettingsFixture shown;
        QVERIFY(!shown.outline().index(1, Model::ValueColumn).data(Qt::CheckStateRole).isValid()); // a category
        QVERIFY(!shown.valueOf("h_time").data(Qt::CheckStateRole).isValid());
        for (const auto &[dvar, state] : {std::pair{"h_fire", Qt::Checked}, {"h_lost", Qt::Unchecked}}) {
            QCOMPARE(shown.valueOf(dvar).data(Qt::CheckStateRole), QVariant(state));
            QVERIFY(!shown.valueOf(dvar).siblingAtColumn(0).data(Qt::CheckStateRole).isValid());
        }
        QCOMPARE(shown.valueOf("h_fire").data(Qt::AccessibleTextRole).toString(), QString("On"));
        QCOMPARE(shown.valueOf("h_cam").data(Qt::AccessibleTextRole).toString(), QString("Off"));
        QCOMPARE(shown.shownValue("h_fire"), QString());
        QCOMPARE(shown.shownValue("h_lost"), QString("not on this server"));
        QCOMPARE(shown.valueOf("h_lost").data(Qt::AccessibleTextRole).toString(), QString("not on this server"));
        QCOMPARE(shown.valueOf("h_time").siblingAtColumn(Model::DescriptionColumn).data().toString(),
                 QString("Minutes that a round lasts."));
        // The kind of cell does not care for case, what may be typed does.
        QCOMPARE(shown.valueOf("h_cam").data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
        QVERIFY(!shown.outline().setData(shown.valueOf("h_cam"), "1"));
    }

    void announcesOnlyWhatChanged()
    {
        SettingsFixture shown;
        QSignalSpy changes(&shown.outline(), &Model::dataChanged);
        awaited(shown.server.setDvar("house_greeting", "another group's"));
        QCOMPARE(changes.size(), 0);
        shown.server.addDvarLine(u"h_time \"30\""); // which nobody has told yet
        shown.server.addDvarLine(u"h_lost \"1\"");
        awaited(shown.server.setDvar("h_cam", "1"));
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(0).toModelIndex(), shown.valueOf("h_cam"));
        QCOMPARE(changes.first().at(1).toModelIndex(), shown.valueOf("h_cam"));
        // Neighbours that change together are announced together.
        changes.clear();
        shown.server.addDvarLine(u"h_cam \"0\"");
        emit shown.server.dvarListChanged();
        QCOMPARE(changes.size(), 2);
        QCOMPARE(changes.first().at(0).toModelIndex(), shown.valueOf("h_time"));
        QCOMPARE(changes.first().at(1).toModelIndex(), shown.valueOf("h_time"));
        QCOMPARE(changes.last().at(0).toModelIndex(), shown.valueOf("h_lost"));
        QCOMPARE(changes.last().at(1).toModelIndex(), shown.valueOf("h_cam"));
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

    void showsWhatIsStillToCome()
    {
        SettingsFixture shown;
        const auto tells = [&shown](const QString &text, bool isUnknown, bool isAwaited) {
            const QModelIndex value = shown.valueOf("h_lost");
            return value.data().toString() == text && value.data(Qt::AccessibleTextRole).toString() == text &&
                   value.data(Model::IsUnknownRole).toBool() == isUnknown &&
                   value.data(Model::IsAwaitedRole).toBool() == isAwaited &&
                   value.flags().testFlag(Qt::ItemIsUserCheckable);
        };
        shown.exchange.answer("h_lost", ScriptedExchange::ok("Unknown command \"h_lost\"\n"));
        shown.connectAndFetch();
        QVERIFY(tells(u"asking…"_qs, true, true));
        QVERIFY(!shown.valueOf("h_time").data(Model::IsAwaitedRole).toBool());
        QSignalSpy changes(&shown.outline(), &Model::dataChanged);
        shown.releaseUntilToldOf("h_lost");
        QTRY_COMPARE(changes.size(), 1); // with the session's gathered change
        QCOMPARE(changes.first().at(0).toModelIndex(), shown.valueOf("h_lost"));
        QVERIFY(tells("not on this server", true, false));
        shown.exchange.answer("h_lost", ScriptedExchange::failure());
        shown.fetcher.askAgain();
        shown.releaseUntilToldOf("h_lost");
        QVERIFY(tells("no answer", true, false));
        QVERIFY(shown.alerts.shown().isEmpty());
    }

    void aValueThatComesLaterIsNoChange_data()
    {
        QTest::addColumn<bool>("isWritten");
        QTest::newRow("it comes") << false;
        QTest::newRow("it is written before it comes") << true;
    }
    void aValueThatComesLaterIsNoChange()
    {
        QFETCH(bool, isWritten);
        SettingsFixture shown;
        shown.exchange.answer("h_lost", ScriptedExchange::ok("\"h_lost\" is: \"1\" in force: \"1\"\n"));
        shown.settings.setSelectedSettingList("Match");
        shown.view.setInFront(true);
        shown.connectAndFetch();
        if (isWritten) { // its reply is lost, and the write comes before it is asked for again
            shown.exchange.answer("h_lost", ScriptedExchange::failure());
            shown.exchange.release();
            QVERIFY(shown.outline().setData(shown.valueOf("h_lost"), {}, Qt::CheckStateRole));
            QTRY_COMPARE(shown.exchange.sent().last(), QString("setadmindvar h_lost \"1\""));
            shown.exchange.answer("h_lost", ScriptedExchange::ok("\"h_lost\" is: \"1\" in force: \"1\"\n"));
            shown.exchange.release();
        }
        shown.releaseUntilToldOf("h_lost");
        QCOMPARE(shown.valueOf("h_lost").data(Qt::CheckStateRole), QVariant(Qt::Checked));
        QCOMPARE(shown.valueOf("h_lost").data(Model::IsChangedRole).toBool(), isWritten);
        QCOMPARE(shown.outline().valueAtConnect("h_lost"), isWritten ? QString() : QString("1"));
        QCOMPARE(shown.valueOf("h_lost").data(Qt::AccessibleDescriptionRole).toString(),
                 isWritten ? QString("Was: not known") : QString());
    }

    void asksAgainForWhatIsNotThere()
    {
        SettingsFixture shown;
        shown.exchange.answer("h_lost", ScriptedExchange::ok("Unknown command \"h_lost\"\n"));
        shown.connectAndFetch();
        const auto askAgain = [&shown](const QString &dvar) {
            shown.tree().setCurrentIndex(shown.valueOf(dvar));
            return shown.menuAction("Ask Again");
        };
        QVERIFY(askAgain("h_lost") == nullptr && askAgain("h_time") == nullptr);
        shown.releaseUntilToldOf("h_lost");
        shown.exchange.answer("h_lost", ScriptedExchange::ok("\"h_lost\" is: \"1\" in force: \"1\"\n"));
        QVERIFY(askAgain("h_time") == nullptr && askAgain("h_lost") != nullptr);
        askAgain("h_lost")->trigger();
        QCOMPARE(shown.shownValue("h_lost"), u"asking…"_qs);
        shown.releaseUntilToldOf("h_lost");
        QCOMPARE(shown.exchange.sent().count("h_lost"), 2);
        QCOMPARE(shown.valueOf("h_lost").data(Qt::CheckStateRole), QVariant(Qt::Checked));
        QVERIFY(!shown.valueOf("h_lost").data(Model::IsChangedRole).toBool());
        QVERIFY(askAgain("h_lost") == nullptr);
    }

    void whatIsLookedAtComesFirst_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("next");
        const auto row = [](const char *name, const char *how, const char *next) {
            QTest::newRow(name) << QString(how) << QString(next);
        };
        row("another page is in front", "", "m_2");
        row("the page comes to the front", "front", "z_1");
        row("it is in front when the connect ends", "connect", "z_1");
        row("a group is chosen", "group", "y_1");
        row("a gametype is chosen", "gametype", "x_1");
    }
    void whatIsLookedAtComesFirst()
    {
        QFETCH(QString, how);
        SettingsFixture shown;
        shown.write("gameSettingsUnranked",
                    "<s><SettingInst><name>Z</name>" + settingXml("Z", "z_1", "int", "c") +
                        "</SettingInst><SettingInst><name>A</name>" + settingXml("M1", "m_1", "int", "c") +
                        settingXml("M2", "m_2", "int", "c") + settingXml("M3", "m_3", "int", "c") +
                        "</SettingInst><SettingInst><name>Y</name>" + settingXml("Y", "y_1", "int", "c") +
                        "</SettingInst></s>"); // a connect chooses the first, and asks in the order of their names
        shown.write("gametypes", "<g><Gametype><name>Duckboard</name></Gametype><Gametype><name>Team</name>"
                                 "<dvarName>crews</dvarName>" +
                                     settingXml("X", "x_1", "int", "c") + "</Gametype></g>");
        if (how == "connect")
            shown.view.setInFront(true);
        shown.connectAndFetch();
        shown.view.setInFront(how == "front" || how == "connect");
        if (how == "group" || how == "gametype") {
            shown.view.setInFront(true);
            if (how == "group")
                shown.settings.setSelectedSettingList("Y");
            else
                shown.gametypes.setSelectedSettingList(shown.gametypes.arrangedGametypes().last());
        }
        if (how != "connect") {
            shown.exchange.release();
            QTRY_COMPARE(shown.exchange.keptCount(), 1);
        }
        QTEST(shown.exchange.sent().last(), "next");
    }

    void copies()
    {
        SettingsFixture shown;
        shown.tree().setCurrentIndex(shown.valueOf("h_time"));
        shown.menuAction("Copy Variable Name")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("h_time"));
        shown.menuAction("Copy Value")->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("20"));
        shown.tree().setCurrentIndex(shown.valueOf("h_lost"));
        QVERIFY(!shown.menuAction("Copy Value")->isEnabled());
    }

    void anEmptyOutlineSaysWhyItIsEmpty()
    {
        SettingsFixture shown;
        const auto said = [&shown] {
            for (const QLabel *hint : shown.tree().viewport()->findChildren<QLabel *>())
                if (hint->isVisible())
                    return hint->text();
            return QString();
        };
        QCOMPARE(said(), QString());
        shown.filterField()->setText("nowhere");
        QCOMPARE(said(), QString("No setting here matches the filter."));
    }

    void aWriteOnItsWayIsShown()
    {
        SettingsFixture shown;
        const int width = shown.tree().sizeHintForIndex(shown.valueOf("h_time")).width();
        shown.exchange.hold();
        QVERIFY(shown.outline().setData(shown.valueOf("h_time"), "20"));
        QVERIFY(shown.tree().sizeHintForIndex(shown.valueOf("h_time")).width() > width);
        shown.exchange.release();
        QVERIFY(shown.settle());
        QCOMPARE(shown.tree().sizeHintForIndex(shown.valueOf("h_time")).width(), width);
    }

    void filters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("names");
        QTest::newRow("any case") << "REPLAY" << QStringList{"rules", "  Replay"};
        QTest::newRow("words in any order, anywhere")
            << " minutes  h_time lim " << QStringList{"Limits", "  Time limit"};
        QTest::newRow("in the description alone") << "hurts" << QStringList{"rules", "  Hits among mates"};
        QTest::newRow("every word counts") << "minutes gravity" << QStringList{};
        QTest::newRow("the category is no part of it") << "rules" << QStringList{};
    }
    void filters()
    {
        QFETCH(QString, text);
        SettingsFixture shown;
        const QAbstractItemModelTester tester(&shown.outline());
        const QStringList all = shown.shownNames(shown.tree());
        shown.filterField()->setText(text);
        QTEST(shown.shownNames(shown.tree()), "names");
        shown.filterField()->clear();
        QCOMPARE(shown.shownNames(shown.tree()), all);
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

    void hostileTextsStayTexts()
    {
        SettingsFixture shown;
        const QString value = "<img src=x>" + QString(60000, 'y');
        shown.server.addDvarLine(QString("h_time \"%1\"").arg(value));
        QVERIFY(shown.shownValue("h_time").size() < 1000);
        const QString toolTip = shown.valueOf("h_time").data(Qt::ToolTipRole).toString();
        QVERIFY(toolTip.contains("&lt;img src=x&gt;") && toolTip.size() < 10000);
    }
};

QTEST_MAIN(SettingsOutlineTest)
#include "tst_settingsoutline.moc"
