#include "RealPointer.h"
#include "ShownLetters.h"

#include <QDialog>

using Disturbance = std::function<void(ShownLetters<Letter> &)>;

/// What only a drag through the display can show: other things happen in the event loop that Qt runs, and views of Qt
/// remove or empty what they take for dragged away.
class DraggingTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY2(RealPointer::isThere(), "Rows are dragged with the X server's pointer alone."); }

    void aDropIsWhatWasMeant_data()
    {
        QTest::addColumn<Disturbance>("disturb"); // while X and Y are on their way to the top
        QTest::addColumn<QString>("left");
        const auto row = [](const char *name, const char *left, const Disturbance &disturb) {
            QTest::newRow(name) << disturb << QString(left);
        };
        row("undisturbed", "XYVWZ", [](auto &) {});
        row("called off with Escape", "VWXYZ",
            [](auto &shown) { QTest::keyClick(shown.table.windowHandle(), Qt::Key_Escape); });
        row("the table is hidden", "VWXYZ", [](auto &shown) { shown.table.hide(); });
        row("a sheet opens", "VWXYZ", [](auto &shown) {
            auto *sheet = new QDialog(&shown.table);
            sheet->setGeometry(600, 400, 200, 100); // covers nothing
            sheet->open();
        });
        row("the window is closed", "VWXYZ", [](auto &shown) { shown.table.close(); });
        row("Delete is pressed", "XYVWZ",
            [](auto &shown) { QTest::keyClick(shown.table.windowHandle(), Qt::Key_Delete); });
        row("a row above is removed", "XYWZ", [](auto &shown) {
            shown.rows.choose({0});
            shown.rows.removeSelected();
        });
        row("one of them is removed", "YVWZ", [](auto &shown) {
            shown.rows.choose({2});
            shown.rows.removeSelected();
        });
        row("all rows are removed", "", [](auto &shown) { shown.rows.removeAll(); });
        row("others are chosen", "XYVWZ", [](auto &shown) { shown.rows.choose({4}); });
        row("the model is taken away", "VWXYZ", [](auto &shown) { shown.table.setModel(nullptr); });
    }
    void aDropIsWhatWasMeant()
    {
        QFETCH(Disturbance, disturb);
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.table.setDeleteHandler([&] { shown.rows.removeSelected(); });
        shown.rows.choose({2, 3});
        const QPoint top = shown.at(0);
        QVERIFY(RealPointer().drag(shown.table, shown.at(3), top, [&] { disturb(shown); }));
        QTEST(shown.rows.shown(), "left");
    }

    void onThemselvesRowsStay()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose({1, 3});
        QVERIFY(RealPointer().drag(shown.table, shown.at(1), shown.at(3, true)));
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWXYZ"));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
        QVERIFY(RealPointer().drag(shown.table, shown.at(1), shown.at(4))); // just below the last of them
        QCOMPARE(shown.rows.shown(), QStringLiteral("VXWYZ"));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
    }

    void whatIsDroppedElsewhereStays_data()
    {
        QTest::addColumn<bool>("isOnAnother");
        QTest::newRow("on another table") << true;
        QTest::newRow("on nothing") << false;
    }
    void whatIsDroppedElsewhereStays()
    {
        QFETCH(bool, isOnAnother);
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
        ShownLetters<Letter> other(QStringLiteral("abc"));
        other.table.move(400, 0);
        QTRY_VERIFY(other.table.geometry().x() >= 400);
        const QPoint place = other.table.viewport()->mapToGlobal(other.at(isOnAnother ? 1 : 40));
        QVERIFY(RealPointer().drag(shown.table, shown.at(1), shown.table.viewport()->mapFromGlobal(place)));
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWX"));
        QCOMPARE(other.rows.shown(), QStringLiteral("abc"));
    }
};

QTEST_MAIN(DraggingTest)
#include "tst_dragging.moc"
