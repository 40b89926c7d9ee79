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
        row("a sheet opens", "VWXYZ", [](auto &shown) {
            auto *sheet = new QDialog(&shown.table);
            sheet->setGeometry(600, 400, 200, 100); // covers nothing
            sheet->open();
        });
        row("the window is closed", "VWXYZ", [](auto &shown) { shown.table.close(); });
        row("a row above is removed", "XYWZ", [](auto &shown) {
            shown.rows.choose({0});
            shown.rows.removeSelected();
        });
        row("one of them is removed", "YVWZ", [](auto &shown) {
            shown.rows.choose({2});
            shown.rows.removeSelected();
        });
        row("others are chosen", "XYVWZ", [](auto &shown) { shown.rows.choose({4}); });
    }
    void aDropIsWhatWasMeant()
    {
        QFETCH(Disturbance, disturb);
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose({2, 3});
        const QPoint top = shown.at(0);
        QVERIFY(RealPointer().drag(shown.table, shown.at(3), top, [&] { disturb(shown); }));
        QTEST(shown.rows.shown(), "left");
    }
};

QTEST_MAIN(DraggingTest)
#include "tst_dragging.moc"
