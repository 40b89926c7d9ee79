#include "SettingsFixture.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QSignalSpy>

using Mode = SettingsView::Mode;
using Model = SettingsOutlineModel;

static QAction *actionOf(const QMenu &menu, const QString &text)
{
    for (QAction *action : menu.actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

class SettingsOutlineTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheChosenGroup_data();
    void showsTheChosenGroup();
    void showsTheChosenGametype();
    void tellsCellsApart();
    void announcesOnlyWhatChanged();
    void marksChangesAndReverts();
    void copies();
    void filters_data();
    void filters();
    void theFilterKeepsWhatWasChosenAndClosed();
    void hostileTextsStayTexts();
    void theLayoutReturns();
};

void SettingsOutlineTest::showsTheChosenGroup_data()
{
    QTest::addColumn<Mode>("mode");
    QTest::addColumn<QString>("outlineName");
    QTest::newRow("unranked") << Mode::Unranked << "unrankedOutlineView";
    QTest::newRow("ranked") << Mode::Ranked << "rankedOutlineView";
}

void SettingsOutlineTest::showsTheChosenGroup()
{
    QFETCH(Mode, mode);
    QFETCH(QString, outlineName);
    SettingsFixture shown(mode);
    const QAbstractItemModelTester tester(&shown.outline());
    QCOMPARE(shown.view.findChild<QTreeView *>(outlineName), &shown.tree());
    QCOMPARE(shown.view.findChild<QWidget *>(QStringLiteral("gametypeList")) != nullptr, mode == Mode::Unranked);
    QCOMPARE(shown.tree().accessibleName(), QStringLiteral("Game settings"));

    auto *groups = shown.view.findChild<QListWidget *>(QStringLiteral("settingsGroupList"));
    QCOMPARE(groups->currentItem()->text(), QStringLiteral("Match"));
    QCOMPARE(shown.shownNames(shown.tree()),
             QStringList({"Limits", "  Gravity", "  Time limit", "rules", "  Friendly fire", "  Lost switch",
                          "  Lost text", "  Replay"}));
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("20"));

    shown.tree().collapseAll();
    QTest::keyClick(groups, Qt::Key_Down);
    QCOMPARE(shown.settings.selectedSettingList(), QStringLiteral("About"));
    QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Texts", "  Message", "  Odd"}));
    shown.tree().collapseAll();
    shown.settings.setSelectedSettingList(QStringLiteral("Match"));
    QCOMPARE(groups->currentRow(), 0);
    QCOMPARE(shown.shownNames(shown.tree()).size(), 8);
}

void SettingsOutlineTest::showsTheChosenGametype()
{
    SettingsFixture shown;
    const QTreeView &tree = *shown.view.gametypeOutlineView;
    QCOMPARE(shown.shownNames(tree), QStringList({"Limits", "  Score limit"}));
    QTest::keyClick(shown.view.gametypeList, Qt::Key_Down);
    QCOMPARE(shown.gametypes.selectedSettingList()->name(), QStringLiteral("Duel"));
    QVERIFY(shown.shownNames(tree).isEmpty());
    shown.gametypes.setSelectedSettingList(shown.gametypes.arrangedGametypes().first());
    QCOMPARE(shown.view.gametypeList->currentRow(), 0);
    QCOMPARE(shown.shownNames(tree), QStringList({"Limits", "  Score limit"}));
    const QModelIndex value = tree.model()->index(0, Model::ValueColumn, tree.model()->index(0, 0));
    shown.exchange.answerEverything(ScriptedExchange::ok());
    QVERIFY(shown.view.gametypeOutlineView->model()->setData(value, QStringLiteral("75")));
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList{"setadmindvar scr_score \"75\""});
    QCOMPARE(value.data().toString(), QStringLiteral("75"));
}

void SettingsOutlineTest::tellsCellsApart()
{
    SettingsFixture shown;
    const QModelIndex category = shown.outline().index(1, Model::ValueColumn);
    QVERIFY(category.data().toString().isEmpty());
    QVERIFY(!category.data(Qt::CheckStateRole).isValid());
    QVERIFY(!shown.valueOf("g_time").data(Qt::CheckStateRole).isValid());
    for (const auto &[dvar, state] :
         {std::pair{"g_fire", Qt::Checked}, {"g_cam", Qt::Unchecked}, {"g_lost", Qt::Unchecked}}) {
        QCOMPARE(shown.valueOf(dvar).data(Qt::CheckStateRole), QVariant(state));
        QVERIFY(!shown.valueOf(dvar).siblingAtColumn(0).data(Qt::CheckStateRole).isValid());
    }
    QVERIFY(shown.shownValue("g_fire").isEmpty());
    QCOMPARE(shown.shownValue("g_lost"), QStringLiteral("Not known to the server"));
    QCOMPARE(shown.shownValue("g_lostText"), QStringLiteral("Not known to the server"));
    QCOMPARE(shown.valueOf("g_time").siblingAtColumn(Model::DescriptionColumn).data().toString(),
             QStringLiteral("Minutes that a round lasts."));
    // The kind of cell does not care for case, what may be typed does.
    QVERIFY(shown.outline().setData(shown.valueOf("g_fire"), QStringLiteral("0")));
    QVERIFY(!shown.outline().setData(shown.valueOf("g_cam"), QStringLiteral("1")));
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent(), QStringList{"setadmindvar g_fire \"0\""});
}

void SettingsOutlineTest::announcesOnlyWhatChanged()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    QSignalSpy changes(&shown.outline(), &Model::dataChanged);
    awaited(shown.server.setDvar(QStringLiteral("g_motd"), QStringLiteral("another group's")));
    QCOMPARE(changes.size(), 0);
    awaited(shown.server.setDvar(QStringLiteral("g_cam"), QStringLiteral("1")));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().at(0).toModelIndex(), shown.valueOf("g_cam"));
    QCOMPARE(changes.first().at(1).toModelIndex(), shown.valueOf("g_cam"));
    changes.clear();
    // Neighbours that change together are announced together; an empty value is not an unknown one.
    shown.server.addDvarLine(u"g_lost \"1\"");
    shown.server.addDvarLine(u"g_fire \"0\"");
    awaited(shown.server.setDvar(QStringLiteral("g_cam"), QStringLiteral("0")));
    QCOMPARE(changes.size(), 2);
    QCOMPARE(changes.first().at(0).toModelIndex(), shown.valueOf("g_fire"));
    QCOMPARE(changes.first().at(1).toModelIndex(), shown.valueOf("g_lost"));
}

void SettingsOutlineTest::marksChangesAndReverts()
{
    SettingsFixture shown;
    shown.exchange.answerEverything(ScriptedExchange::ok());
    const auto menuOn = [&shown](const QString &dvar) {
        const QPoint place = shown.tree().visualRect(shown.valueOf(dvar)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, shown.tree().viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(shown.tree().viewport(), &event);
        const QList<QMenu *> menus = shown.tree().findChildren<QMenu *>(QStringLiteral("settingMenu"));
        return menus.isEmpty() ? nullptr : menus.last();
    };
    QVERIFY(!shown.valueOf("g_time").data(Model::IsChangedRole).toBool());
    QMenu *menu = menuOn("g_time");
    QVERIFY(menu != nullptr && !actionOf(*menu, QStringLiteral("Revert"))->isEnabled());
    menu->close();

    awaited(shown.server.setDvar(QStringLiteral("g_time"), QStringLiteral("30")));
    QVERIFY(shown.valueOf("g_time").data(Model::IsChangedRole).toBool());
    QVERIFY(shown.valueOf("g_time").data(Qt::ToolTipRole).toString().contains(QLatin1String("Was: 20")));
    menu = menuOn("g_time");
    actionOf(*menu, QStringLiteral("Revert"))->trigger();
    menu->close();
    QVERIFY(shown.settle());
    QCOMPARE(shown.exchange.sent().last(), QStringLiteral("setadmindvar g_time \"20\""));
    QVERIFY(!shown.valueOf("g_time").data(Model::IsChangedRole).toBool());

    // The next connect starts afresh, and what was not known at connect has nothing to return to.
    awaited(shown.server.setDvar(QStringLiteral("g_time"), QStringLiteral("30")));
    shown.dump({{"g_time", "40"}, {"g_fire", "1"}});
    shown.connectToServer();
    QCOMPARE(shown.shownValue("g_time"), QStringLiteral("40"));
    QVERIFY(!shown.valueOf("g_time").data(Model::IsChangedRole).toBool());
    shown.server.addDvarLine(u"g_cam \"1\"");
    QVERIFY(shown.valueOf("g_cam").data(Model::IsChangedRole).toBool());
    menu = menuOn("g_cam");
    QVERIFY(!actionOf(*menu, QStringLiteral("Revert"))->isEnabled());
    menu->close();
}

void SettingsOutlineTest::copies()
{
    SettingsFixture shown;
    shown.tree().setCurrentIndex(shown.valueOf("g_time"));
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
    QCoreApplication::sendEvent(shown.tree().viewport(), &byKey);
    auto *menu = shown.tree().findChild<QMenu *>(QStringLiteral("settingMenu"));
    QVERIFY(menu != nullptr);
    actionOf(*menu, QStringLiteral("Copy Variable Name"))->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("g_time"));
    actionOf(*menu, QStringLiteral("Copy Value"))->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("20"));
    menu->close();
    QTRY_VERIFY(shown.tree().findChild<QMenu *>() == nullptr);
    shown.tree().setCurrentIndex(shown.outline().index(0, 0));
    QCoreApplication::sendEvent(shown.tree().viewport(), &byKey);
    QVERIFY(shown.tree().findChild<QMenu *>() == nullptr);
}

void SettingsOutlineTest::filters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("name") << "REPLAY" << QStringList{"rules", "  Replay"};
    QTest::newRow("variable") << "g_lostt" << QStringList{"rules", "  Lost text"};
    QTest::newRow("description") << "fall" << QStringList{"Limits", "  Gravity"};
    QTest::newRow("words in any order, anywhere") << " minutes  g_time lim " << QStringList{"Limits", "  Time limit"};
    QTest::newRow("every word counts") << "minutes gravity" << QStringList{};
    QTest::newRow("over several categories")
        << "as" << QStringList{"Limits", "  Gravity", "  Time limit", "rules", "  Friendly fire", "  Replay"};
    QTest::newRow("the category is no part of it") << "rules" << QStringList{};
    QTest::newRow("blanks are no words") << "  "
                                         << QStringList{"Limits",          "  Gravity",     "  Time limit", "rules",
                                                        "  Friendly fire", "  Lost switch", "  Lost text",  "  Replay"};
}

void SettingsOutlineTest::filters()
{
    QFETCH(QString, text);
    QFETCH(QStringList, names);
    SettingsFixture shown;
    const QAbstractItemModelTester tester(&shown.outline());
    const QStringList all = shown.shownNames(shown.tree());
    shown.view.settingsFilterField->setText(text);
    QCOMPARE(shown.shownNames(shown.tree()), names);
    // The other group is narrowed as well.
    shown.settings.setSelectedSettingList(QStringLiteral("About"));
    shown.settings.setSelectedSettingList(QStringLiteral("Match"));
    QCOMPARE(shown.shownNames(shown.tree()), names);
    shown.view.settingsFilterField->clear();
    QCOMPARE(shown.shownNames(shown.tree()), all);
}

void SettingsOutlineTest::theFilterKeepsWhatWasChosenAndClosed()
{
    SettingsFixture shown;
    shown.tree().setCurrentIndex(shown.valueOf("g_cam"));
    shown.tree().collapse(shown.outline().index(0, 0));
    shown.view.settingsFilterField->setText(QStringLiteral("g_time"));
    QCOMPARE(shown.shownNames(shown.tree()), QStringList({"Limits", "  Time limit"}));
    shown.exchange.answerEverything(ScriptedExchange::ok());
    awaited(shown.server.setDvar(QStringLiteral("g_cam"), QStringLiteral("1"))); // while it is hidden
    shown.view.settingsFilterField->clear();
    QCOMPARE(shown.outline().settingAt(shown.tree().currentIndex())->dvar(), QStringLiteral("g_cam"));
    QCOMPARE(shown.valueOf("g_cam").data(Qt::CheckStateRole), QVariant(Qt::Checked));
    QVERIFY(!shown.tree().isExpanded(shown.outline().index(0, 0)));
    QVERIFY(shown.tree().isExpanded(shown.outline().index(1, 0)));
}

void SettingsOutlineTest::hostileTextsStayTexts()
{
    SettingsFixture shown;
    const QString value = QStringLiteral("<img src=x>") + QString(60000, QLatin1Char('y'));
    shown.server.addDvarLine(QStringLiteral("g_time \"%1\"").arg(value));
    QVERIFY(shown.shownValue("g_time").size() < 1000);
    const QString toolTip = shown.valueOf("g_time").data(Qt::ToolTipRole).toString();
    QVERIFY(toolTip.contains(QLatin1String("&lt;img src=x&gt;")) && toolTip.size() < 10000);
    QCOMPARE(shown.valueOf("g_time").data(Qt::EditRole).toString(), value);
}

void SettingsOutlineTest::theLayoutReturns()
{
    SettingsFixture shown;
    shown.tree().setColumnWidth(Model::ValueColumn, 177);
    const QByteArray layout = shown.view.saveLayout();
    for (const QByteArray &bytes : {layout, QByteArray(), QByteArray("\xff\xff\xff\xff rubbish"), layout.left(40)}) {
        SettingsFixture next;
        const int before = next.tree().columnWidth(Model::ValueColumn);
        next.view.restoreLayout(bytes);
        QCOMPARE(next.tree().columnWidth(Model::ValueColumn), bytes == layout ? 177 : before);
    }
}

QTEST_MAIN(SettingsOutlineTest)
#include "tst_settingsoutline.moc"
