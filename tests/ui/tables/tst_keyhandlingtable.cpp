#include "KeyHandlingTableView.h"
#include "Letters.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

/// A table that is shown, with the mouse at hand.
template <typename Entry>
struct Shown {
    explicit Shown(const QString &letters) : rows(letters)
    {
        table.setModel(rows.arranged());
        table.setSelectionModel(rows.selection());
        table.setRows(&rows);
        table.resize(300, 300);
        table.show();
        table.activateWindow();
        table.setFocus();
        (void)QTest::qWaitForWindowActive(&table);
    }

    /// A point of the row, at its upper or lower half; of the place below the last row for a row that is none.
    QPoint at(int row, bool isLower = false) const
    {
        const int height = table.rowHeight(0);
        return {60, table.rowViewportPosition(0) + row * height + (isLower ? 3 * height / 4 : height / 4)};
    }
    void press(int row, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(table.viewport(), Qt::LeftButton, modifiers, at(row));
    }
    void move(const QPoint &to, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseEvent(QTest::MouseMove, table.viewport(), Qt::NoButton, modifiers, to);
    }
    void release(const QPoint &to, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseRelease(table.viewport(), Qt::LeftButton, modifiers, to);
    }
    static bool isDragShown() { return QGuiApplication::overrideCursor() != nullptr; }

    Letters<Entry> rows;
    KeyHandlingTableView table;
};

class KeyHandlingTableTest : public QObject
{
    Q_OBJECT
private slots:
    void dragsRows_data()
    {
        QTest::addColumn<QList<int>>("selected");
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("target"); // the row in whose upper half the mouse is let go
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("chosen");
        const auto row = [](const char *name, const QList<int> &selected, int pressed, int target,
                            Qt::KeyboardModifiers modifiers, const char *shown, const char *chosen) {
            QTest::newRow(name) << selected << pressed << target << modifiers << QString(shown) << QString(chosen);
        };
        row("a row that was not selected", {0}, 2, 0, Qt::NoModifier, "XVWYZ", "X");
        row("several together", {1, 3}, 3, 0, Qt::NoModifier, "WYVXZ", "WY");
        row("below the last row", {0, 1}, 0, 7, Qt::NoModifier, "XYZVW", "VW");
        row("copied", {0, 2}, 0, 1, Qt::ControlModifier, "VV'X'WXYZ", "V'X'");
        row("onto its own place", {}, 2, 3, Qt::NoModifier, "VWXYZ", "X");
    }
    void dragsRows()
    {
        QFETCH(QList<int>, selected);
        QFETCH(int, pressed);
        QFETCH(int, target);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Shown<CopyableLetter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose(selected);
        shown.press(pressed, modifiers);
        shown.move(shown.at(pressed) + QPoint(2, 0));
        QVERIFY(!shown.isDragShown()); // a hand that trembles
        shown.move(shown.at(target) + QPoint(30, 0), modifiers);
        QVERIFY(shown.isDragShown());
        QCOMPARE(QGuiApplication::overrideCursor()->shape(), modifiers ? Qt::DragCopyCursor : Qt::DragMoveCursor);
        shown.release(shown.at(target) + QPoint(30, 0), modifiers);
        QVERIFY(!shown.isDragShown());
        QTEST(shown.rows.shown(), "shown");
        QTEST(shown.rows.selected(), "chosen");
    }

    void aDragIsCalledOff_data()
    {
        using Disturbance = std::function<void(Shown<Letter> &)>;
        QTest::addColumn<Disturbance>("disturb");
        const auto row = [](const char *name, const Disturbance &disturb) {
            QTest::newRow(name) << disturb;
        };
        const auto send = [](QEvent::Type type) -> Disturbance {
            return [type](auto &shown) {
                QEvent event(type);
                QCoreApplication::sendEvent(&shown.table, &event);
            };
        };
        row("by Escape", [](auto &shown) { QTest::keyClick(&shown.table, Qt::Key_Escape); });
        row("by a row's removal", [](auto &shown) {
            shown.rows.choose({4});
            shown.rows.removeSelected();
        });
        row("by another window in front", send(QEvent::WindowDeactivate));
        row("by a sheet", send(QEvent::WindowBlocked));
        row("by the loss of the focus", [](auto &shown) { shown.table.clearFocus(); });
        row("by hiding the table", [](auto &shown) { shown.table.hide(); });
        row("by switching dragging off", [](auto &shown) { shown.rows.setDraggingEnabled(false); });
        row("outside", [](auto &shown) { shown.move({60, -9}); });
    }
    void aDragIsCalledOff()
    {
        QFETCH(std::function<void(Shown<Letter> &)>, disturb);
        Shown<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.setKeyHandlingDelegate([&] { shown.rows.removeSelected(); });
        const QPoint top = shown.at(0);
        shown.press(3);
        shown.move(top);
        QVERIFY(shown.isDragShown());
        QTest::keyClick(&shown.table, Qt::Key_Delete); // not in the middle of a drag
        disturb(shown);
        const QString left = shown.rows.shown();
        const QString selected = shown.rows.selected();
        const bool isOutside = QTest::currentDataTag() == QByteArray("outside");
        if (isOutside)
            QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::ForbiddenCursor);
        else
            shown.move(top + QPoint(1, 0)); // begins nothing else
        shown.release(isOutside ? QPoint(60, -9) : top);
        QVERIFY(!shown.isDragShown());
        QCOMPARE(shown.rows.shown(), left);
        QCOMPARE(shown.rows.selected(), selected);
    }

    void aDragNearTheEdgeScrolls()
    {
        Shown<Letter> shown(QString(200, QLatin1Char('x')));
        shown.press(0);
        shown.move({60, shown.table.viewport()->height() - 2});
        QTRY_VERIFY(shown.table.verticalScrollBar()->value() > 3 * shown.table.rowHeight(0));
        QTest::keyClick(&shown.table, Qt::Key_Escape);
        shown.release({60, 20});
    }

    void aClickWithoutADragChooses()
    {
        Shown<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose({0, 1, 2});
        shown.press(1);
        QCOMPARE(shown.rows.selected(), QStringLiteral("VWX"));
        shown.release(shown.at(1));
        QCOMPARE(shown.rows.selected(), QStringLiteral("W"));
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ShiftModifier, shown.at(3));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WXY"));
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ControlModifier, shown.at(2));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
        shown.rows.setDraggingEnabled(false);
        shown.press(1);
        shown.move(shown.at(0));
        QVERIFY(!shown.isDragShown());
        shown.release(shown.at(0));
        QVERIFY(!shown.table.acceptDrops() && !shown.table.viewport()->acceptDrops() && !shown.table.dragEnabled());
    }

    void altAndArrowsMoveTheSelection_data()
    {
        QTest::addColumn<QList<int>>("selected");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("shown");
        QTest::newRow("up") << QList<int>{2} << Qt::Key_Up << "VXWYZ";
        QTest::newRow("down") << QList<int>{2, 3} << Qt::Key_Down << "VWZXY";
        QTest::newRow("with a gap") << QList<int>{1, 3} << Qt::Key_Down << "VXZWY";
        QTest::newRow("at the top") << QList<int>{0, 2} << Qt::Key_Up << "VWXYZ";
        QTest::newRow("at the bottom") << QList<int>{4} << Qt::Key_Down << "VWXYZ";
    }
    void altAndArrowsMoveTheSelection()
    {
        QFETCH(QList<int>, selected);
        QFETCH(Qt::Key, key);
        Shown<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose(selected);
        const QString chosen = shown.rows.selected();
        QTest::keyClick(&shown.table, key, Qt::AltModifier);
        QTEST(shown.rows.shown(), "shown");
        QCOMPARE(shown.rows.selected(), chosen);
    }

    void returnEditsTheFirstEditableCell()
    {
        Shown<Letter> shown(QStringLiteral("VWX"));
        const QSignalSpy beeps(&shown.table, &KeyHandlingTableView::beeped);
        QTest::keyClick(&shown.table, Qt::Key_Return);
        QCOMPARE(beeps.size(), 1);
        shown.rows.choose({1, 2});
        QTest::keyClick(&shown.table, Qt::Key_Enter);
        auto *field = shown.table.findChild<QLineEdit *>();
        QVERIFY(field != nullptr);
        QCOMPARE(field->selectedText(), QStringLiteral("W"));
        QTest::keyClicks(field, QStringLiteral("new"));
        shown.table.finishEditing();
        QCOMPARE(shown.rows.shown(), QStringLiteral("VnewX"));
        shown.table.setColumnHidden(1, true); // the only one that can be edited
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QVERIFY(!shown.table.performKeyPressFromKeyDown(&key));
        QCOMPARE(beeps.size(), 1);
    }

    void deleteAsksWhoDeletes()
    {
        Shown<Letter> shown(QStringLiteral("VWX"));
        const QSignalSpy beeps(&shown.table, &KeyHandlingTableView::beeped);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
        QVERIFY(!shown.table.performKeyPressFromKeyDown(&key)); // nobody
        shown.rows.setKeyHandlingDelegate([&] { shown.rows.removeSelected(); });
        QVERIFY(shown.table.performKeyPressFromKeyDown(&key));
        QCOMPARE(beeps.size(), 1);
        shown.rows.choose({0, 2});
        QTest::keyClick(&shown.table, Qt::Key_Backspace);
        QCOMPARE(shown.rows.shown(), QStringLiteral("W"));
    }

    void longTextsAreKeptWhole()
    {
        Shown<Letter> shown(QStringLiteral("V"));
        const QString text = QString(100000, QLatin1Char('w')) + QStringLiteral("\n<b>x</b>");
        QVERIFY(shown.rows.setData(shown.rows.index(0, 1), text));
        shown.table.grab();
        shown.rows.choose({0});
        QTest::keyClick(&shown.table, Qt::Key_Return);
        auto *field = shown.table.findChild<QLineEdit *>();
        QVERIFY(field != nullptr);
        QTest::keyClick(field, Qt::Key_Home);
        QTest::keyClick(field, Qt::Key_A);
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(shown.rows.shown(), QStringLiteral("a") + text);
    }
};

QTEST_MAIN(KeyHandlingTableTest)
#include "tst_keyhandlingtable.moc"
