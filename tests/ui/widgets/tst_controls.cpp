#include "Controls.h"
#include "CutText.h"
#include "LayoutMemory.h"
#include "PlaceholderTable.h"
#include "RefreshTimer.h"
#include "TestPreferences.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDataStream>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>

class ControlsTest : public QObject
{
    Q_OBJECT
private slots:
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
        table.show();
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->textFormat(), Qt::PlainText);
        QCOMPARE(heard(), QString("Press <b>"));
        model.appendRow(new QStandardItem("row"));
        QVERIFY(hint->isHidden() && heard().isEmpty());
        QStandardItemModel other(0, 1);
        table.setModel(&other);
        QVERIFY(hint->isVisible());
        model.appendRow(new QStandardItem("another")); // is no longer of the table
        QVERIFY(hint->isVisible());
    }

    void aCutTextIsToldInFullAndAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("told");
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
        refresh.restart();
        seconds->setValue(86400);
        QVERIFY(!timer->isActive());
        isOn->setChecked(true);
        QCOMPARE(timer->isActive() ? timer->interval() : 0, 86400 * 1000);
        seconds->setValue(7); // while it runs
        QCOMPARE(timer->interval(), 7000);
        RefreshTimer again(preferences, names);
        again.restart();
        QCOMPARE(control<QTimer>(again, "timer")->interval(), 7000);
        const QSignalSpy dues(&refresh, &RefreshTimer::due);
        timer->setInterval(1);
        QTRY_VERIFY(dues.size() > 1);
        isOn->setChecked(false);
        QVERIFY(!timer->isActive() && !preferences.boolValue("autoUpdatePlayers"));
    }

    void readsWhatFormerVersionsKept_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("isStream"); // of the states of several parts, this one's the second
        QTest::newRow("mapRotationPreviewTableView") << "window/rotationBuilder" << false;
        QTest::newRow("exclusionsTableView") << "window/playlists" << true;
    }
    void readsWhatFormerVersionsKept()
    {
        QFETCH(QString, key);
        QFETCH(bool, isStream);
        const QTemporaryDir folder;
        TestPreferences preferences(folder);
        QStandardItemModel model(2, 3);
        QWidget window;
        QTableView table(&window);
        table.setObjectName(QTest::currentDataTag());
        table.setModel(&model);
        QHeaderView &columns = *table.horizontalHeader();
        columns.resizeSection(1, 100);
        for (const QByteArray &damaged : {QByteArray("\xff\xff\xff\xfe", 4), QByteArray(400, 'x')}) {
            preferences.setValue(key, damaged);
            LayoutMemory::restore(window, preferences);
            QCOMPARE(columns.sectionSize(1), 100);
        }
        columns.resizeSection(1, 177);
        QByteArray bytes = columns.saveState();
        if (isStream) {
            const QByteArray state = std::exchange(bytes, {});
            QDataStream stream(&bytes, QIODevice::WriteOnly);
            stream << QByteArray("another") << state;
        }
        preferences.setValue(key, bytes);
        columns.resizeSection(1, 55);
        LayoutMemory::restore(window, preferences);
        QCOMPARE(columns.sectionSize(1), 177);
    }
};

QTEST_MAIN(ControlsTest)
#include "tst_controls.moc"
