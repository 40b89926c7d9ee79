#include "ActionButton.h"
#include "Controls.h"
#include "CutText.h"
#include "LayoutMemory.h"
#include "PlaceholderTable.h"
#include "RefreshTimer.h"
#include "TestPreferences.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDataStream>
#include <QDialog>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardItemModel>
#include <QTest>
#include <QToolTip>
#include <QTreeView>

/// A window with one part that has a layout: a table, an outline or a splitter, by the name of which it is.
struct LaidOut {
    explicit LaidOut(const QString &name)
    {
        if (name.endsWith("View") || name.endsWith("Table")) {
            QTableView *table = name.contains("Outline") ? nullptr : new QTableView(&window);
            QTreeView *outline = table == nullptr ? new QTreeView(&window) : nullptr;
            columns = table == nullptr ? outline->header() : table->horizontalHeader();
            QAbstractItemView *view = table == nullptr ? static_cast<QAbstractItemView *>(outline) : table;
            view->setModel(&model);
            view->setObjectName(name);
        } else {
            splitter = new QSplitter(&window);
            splitter->setObjectName(name);
            splitter->resize(400, 100);
            for (int half = 0; half < 2; ++half)
                splitter->addWidget(new QWidget);
            window.show();
        }
        change(100);
    }
    void change(int size)
    {
        if (splitter != nullptr)
            splitter->setSizes({size, 400 - size});
        else
            columns->resizeSection(1, size);
    }
    QByteArray state() const { return splitter != nullptr ? splitter->saveState() : columns->saveState(); }

    QStandardItemModel model{2, 3};
    QWidget window;
    QHeaderView *columns = nullptr;
    QSplitter *splitter = nullptr;
};

class ControlsTest : public QObject
{
    Q_OBJECT
private slots:
    void aButtonIsWhatItsActionIs()
    {
        QWidget page;
        QLineEdit field(&page);
        QAction *action = makeAction(&page, "&Kick All…", QKeySequence("Ctrl+K"));
        QAction *other = makeAction(&page, "Save &List", {});
        other->setIconText("Save");
        other->setToolTip("Saves it");
        ActionButton button(action, "kickAllButton", &page);
        const ActionButton otherButton(other, "saveButton", &page);
        QCOMPARE(button.text() + button.toolTip(), "Kick All…");
        QCOMPARE(otherButton.text() + otherButton.toolTip(), "SaveSaves it");
        QVERIFY(!action->autoRepeat());
        const QSignalSpy triggers(action, &QAction::triggered);
        button.click();
        QCOMPARE(triggers.size(), 1);
        page.show();
        QVERIFY(QTest::qWaitForWindowActive(&page));
        button.setSuccessor(&field);
        button.setFocus();
        action->setEnabled(false);
        QVERIFY(!button.isEnabled() && field.hasFocus());
        button.click();
        QCOMPARE(triggers.size(), 1);
        action->setEnabled(true);
        QVERIFY(button.isEnabled());
    }

    void anEmptyTableTellsWhatToDo()
    {
        PlaceholderTable table;
        const auto heard = [&table] {
            return QAccessible::queryAccessibleInterface(&table)->text(QAccessible::Description);
        };
        const auto *hint = control<QLabel>(table, "hint");
        table.setPlaceholder("Press <b>");
        QVERIFY(hint->isHidden() && heard().isEmpty()); // as long as nobody knows what it will hold
        QStandardItemModel model(0, 1);
        table.setModel(&model);
        table.resize(300, 200);
        table.show();
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->text(), QString("Press <b>"));
        QCOMPARE(hint->textFormat(), Qt::PlainText);
        QCOMPARE(heard(), QString("Press <b>"));
        table.resize(400, 300);
        QCOMPARE(hint->geometry(), table.viewport()->rect());
        table.setColumnWidth(0, 1000);
        table.horizontalScrollBar()->setValue(100);
        QCOMPARE(hint->geometry(), table.viewport()->rect());
        model.appendRow(new QStandardItem("row"));
        QVERIFY(hint->isHidden() && heard().isEmpty());
        model.clear();
        QVERIFY(hint->isVisible());
        table.setPlaceholder("Press Refresh");
        QCOMPARE(heard(), QString("Press Refresh"));
        QStandardItemModel other(3, 1);
        table.setModel(&other);
        model.appendRow(new QStandardItem("row"));
        model.clear();
        QVERIFY(hint->isHidden());
    }

    void aCutTextIsToldInFullAndAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("told");
        QTest::newRow("fits") << "short" << QString();
        QTest::newRow("too wide") << "<i>&amp;</i>" + QString(100, 'n')
                                  << "<span>&lt;i&gt;&amp;amp;&lt;/i&gt;" + QString(100, 'n') + "</span>";
        QTest::newRow("two lines") << "a\nb"
                                   << "<span>a<br>b</span>";
        QTest::newRow("without an end") << QString(100000, 'n')
                                        << "<span>" + QString(CutText::LongestToolTip, 'n') + "</span>";
    }
    void aCutTextIsToldInFullAndAsItIs()
    {
        QFETCH(QString, text);
        QStandardItemModel model;
        model.appendRow(new QStandardItem(text));
        PlaceholderTable table;
        table.setModel(&model);
        table.resize(300, 200);
        table.show();
        QToolTip::hideText();
        QTRY_VERIFY(QToolTip::text().isEmpty());
        const QPoint place = table.visualRect(model.index(0, 0)).center();
        QHelpEvent event(QEvent::ToolTip, place, table.viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(table.viewport(), &event);
        QTEST(QToolTip::text(), "told");
    }

    void refreshesAgainAndAgainWhileItIsTicked()
    {
        const QTemporaryDir folder;
        TestPreferences preferences(folder);
        const RefreshTimer::Names names{"autoUpdatePlayers", "autoUpdatePlayersTime", "timer", "Interval"};
        RefreshTimer refresh(preferences, names);
        auto *timer = control<QTimer>(refresh, "timer");
        auto *isOn = control<QCheckBox>(refresh, "autoUpdatePlayers");
        auto *seconds = control<QSpinBox>(refresh, "autoUpdatePlayersTime");
        QCOMPARE(seconds->accessibleName(), QString("Interval"));
        refresh.restart();
        seconds->setValue(86400);
        QVERIFY(!timer->isActive());
        isOn->setChecked(true);
        QCOMPARE(timer->isActive() ? timer->interval() : 0, 86400 * 1000);
        seconds->setValue(7); // while it runs
        QCOMPARE(timer->interval(), 7000);
        refresh.stop();
        QVERIFY(!timer->isActive());
        RefreshTimer again(preferences, names);
        const auto *ofAgain = control<QTimer>(again, "timer");
        QVERIFY(!ofAgain->isActive()); // before the connect
        again.restart();
        QCOMPARE(ofAgain->isActive() ? ofAgain->interval() : 0, 7000);
        refresh.restart();
        const QSignalSpy dues(&refresh, &RefreshTimer::due);
        timer->setInterval(1);
        QTRY_VERIFY(dues.size() > 1);
        isOn->setChecked(false);
        QVERIFY(!timer->isActive() && !preferences.boolValue("autoUpdatePlayers"));
    }

    void keepsEveryPartByItsName()
    {
        const QTemporaryDir folder;
        TestPreferences preferences(folder);
        preferences.setValue("window/playersTable", LaidOut("playersTableView").state()); // of a former version
        for (const QString name : {"playersTableView", "newTableView", "newOutlineView", "newSplitter"}) {
            LaidOut part(name);
            part.change(177);
            QDialog sheet(&part.window);
            QTableView ofSheet(&sheet);
            ofSheet.setObjectName("ofSheetView");
            QTableView nameless(&part.window);
            const QByteArray kept = part.state();
            LayoutMemory::save(part.window, preferences);
            part.change(55);
            LayoutMemory::restore(part.window, preferences);
            QVERIFY2(part.state() == kept, qPrintable(name));
            QVERIFY(preferences.value("window/ofSheetView").isNull() && preferences.value("window/").isNull());
        }
    }

    void readsWhatFormerVersionsKept_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("place"); // in a stream of states; -1: not in a stream
        const auto row = [](const char *name, const char *key, int place = -1) {
            QTest::newRow(name) << QString(key) << place;
        };
        row("mainSplitter", "window/splitter");
        row("savedServerTableView", "window/savedServers");
        row("playersTableView", "window/playersTable");
        row("mapServerRotationTableView", "window/serverRotation");
        row("mapRotationPreviewTableView", "window/rotationBuilder");
        row("messageRotationTableView", "window/messages");
        row("configBuilderGeneralSettingsTable", "window/configGroups");
        row("configBuilderGametypeSettingsTable", "window/configGametypes");
        row("playlistsTableView", "window/playlists", 0);
        row("exclusionsTableView", "window/playlists", 1);
        row("settingsHalves", "window/unrankedSettings", 0);
        row("unrankedSettingsPair", "window/unrankedSettings", 1);
        row("gametypePair", "window/unrankedSettings", 2);
        row("unrankedOutlineView", "window/unrankedSettings", 3);
        row("gametypeOutlineView", "window/unrankedSettings", 4);
        row("rankedSettingsPair", "window/rankedSettings", 1);
        row("rankedOutlineView", "window/rankedSettings", 2);
    }
    void readsWhatFormerVersionsKept()
    {
        QFETCH(QString, key);
        QFETCH(int, place);
        const QTemporaryDir folder;
        TestPreferences preferences(folder);
        LaidOut part(QTest::currentDataTag());
        const QByteArray before = part.state();
        for (const QByteArray &damaged : {QByteArray("\xff\xff\xff\xfe", 4), QByteArray(400, 'x')}) {
            preferences.setValue(key, damaged);
            LayoutMemory::restore(part.window, preferences);
            QCOMPARE(part.state(), before);
        }
        part.change(177);
        const QByteArray kept = part.state();
        QByteArray bytes = kept;
        if (place >= 0) {
            bytes.clear();
            QDataStream stream(&bytes, QIODevice::WriteOnly);
            for (int state = 0; state < 5; ++state)
                stream << (state == place ? kept : QByteArray("another"));
        }
        preferences.setValue(key, bytes);
        part.change(55);
        LayoutMemory::restore(part.window, preferences);
        QCOMPARE(part.state(), kept);
    }
};

QTEST_MAIN(ControlsTest)
#include "tst_controls.moc"
