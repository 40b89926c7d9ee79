#include "KeyHandlingTableView.h"
#include "Letters.h"

#include <QClipboard>
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
        const Qt::KeyboardModifiers none = Qt::NoModifier;
        const Qt::KeyboardModifiers copy = Qt::ControlModifier;
        QTest::newRow("a row that was not selected") << QList<int>{0} << 2 << 0 << none << "XVWYZ"
                                                     << "X";
        QTest::newRow("several together") << QList<int>{1, 3} << 3 << 0 << none << "WYVXZ"
                                          << "WY";
        QTest::newRow("below the last row") << QList<int>{0, 1} << 0 << 7 << none << "XYZVW"
                                            << "VW";
        QTest::newRow("copied") << QList<int>{0, 2} << 0 << 1 << copy << "VV'X'WXYZ"
                                << "V'X'";
        QTest::newRow("onto its own place") << QList<int>{} << 2 << 3 << none << "VWXYZ"
                                            << "X";
    }
    void dragsRows()
    {
        QFETCH(QList<int>, selected);
        QFETCH(int, pressed);
        QFETCH(int, target);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        Shown<CopyableLetter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose(selected);
        shown.press(pressed);
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
        QTest::addColumn<std::function<void(Shown<Letter> &)>>("disturb");
        QTest::addColumn<QString>("left");
        using Disturbance = std::function<void(Shown<Letter> &)>;
        const auto row = [](const char *name, const Disturbance &disturb, const char *left = "VWXYZ") {
            QTest::newRow(name) << disturb << left;
        };
        row("by Escape", [](auto &shown) { QTest::keyClick(&shown.table, Qt::Key_Escape); });
        row("outside", [](auto &shown) { shown.move({60, -9}); });
        row(
            "by its rows' removal", [](auto &shown) { shown.rows.removeAll(); }, "");
        row("by another window in front", [](auto &shown) {
            QEvent away(QEvent::WindowDeactivate);
            QCoreApplication::sendEvent(&shown.table, &away);
        });
        row("by a sheet", [](auto &shown) {
            QEvent blocked(QEvent::WindowBlocked);
            QCoreApplication::sendEvent(&shown.table, &blocked);
        });
        row("by the loss of the focus", [](auto &shown) { shown.table.clearFocus(); });
        row("by hiding the table", [](auto &shown) { shown.table.hide(); });
        row("when dragging is switched off", [](auto &shown) { shown.rows.setDraggingEnabled(false); });
    }
    void aDragIsCalledOff()
    {
        QFETCH(std::function<void(Shown<Letter> &)>, disturb);
        QFETCH(QString, left);
        Shown<Letter> shown(QStringLiteral("VWXYZ"));
        shown.press(3);
        shown.move(shown.at(0));
        QVERIFY(shown.isDragShown());
        QTest::keyClick(&shown.table, Qt::Key_Delete); // not in the middle of a drag
        disturb(shown);
        shown.release(left.isEmpty() || shown.rows.draggingEnabled() ? QPoint(60, -9) : shown.at(0));
        QVERIFY(!shown.isDragShown());
        QCOMPARE(shown.rows.shown(), left);
    }

    void noDragBeginsWhereNoneMay()
    {
        Shown<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.setDraggingEnabled(false);
        shown.press(2);
        shown.move(shown.at(0));
        QVERIFY(!shown.isDragShown());
        shown.release(shown.at(0));
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWXYZ"));
        QVERIFY(!shown.table.acceptDrops() && !shown.table.viewport()->acceptDrops() && !shown.table.dragEnabled());
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

    void copiesAndPastesOnRequest()
    {
        Shown<Letter> shown(QStringLiteral("VWX"));
        const QSignalSpy copied(&shown.table, &KeyHandlingTableView::copyRequested);
        const QSignalSpy pasted(&shown.table, &KeyHandlingTableView::pasteRequested);
        QGuiApplication::clipboard()->clear();
        QTest::keyClick(&shown.table, Qt::Key_V, Qt::ControlModifier);
        QGuiApplication::clipboard()->setText(QStringLiteral("a\tb"));
        QTest::keyClick(&shown.table, Qt::Key_V, Qt::ControlModifier);
        QTest::keyClick(&shown.table, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(copied.size(), 1);
        QCOMPARE(pasted.size(), 1);
        QCOMPARE(pasted.first().first().toString(), QStringLiteral("a\tb"));
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
