#include "Letters.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QTest>

class ReorderableRowsTest : public QObject
{
    Q_OBJECT
private slots:
    void drops_data()
    {
        QTest::addColumn<QList<int>>("dragged");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("moved");
        QTest::addColumn<QString>("copied");
        QTest::addColumn<QString>("selected");
        const auto row = [](const char *name, const QList<int> &dragged, int target, const char *moved,
                            const char *copied, const char *selected) {
            QTest::newRow(name) << dragged << target << QString(moved) << QString(copied) << QString(selected);
        };
        row("gathered at the top", {1, 3}, 0, "WYVXZ", "W'Y'VWXYZ", "WY");
        row("down as a block", {0, 1}, 4, "XYVWZ", "VWXYV'W'Z", "VW");
        row("from both sides", {4, 0, 3}, 2, "WVYZX", "VWV'Y'Z'XYZ", "VYZ");
        row("to the end", {2, 0}, 5, "WYZVX", "VWXYZV'X'", "VX");
        row("onto itself", {2}, 2, "VWXYZ", "VWX'XYZ", "X");
        row("just below itself", {1, 2}, 3, "VWXYZ", "VWXW'X'YZ", "WX");
        row("a negative place is the top", {4}, -1, "ZVWXY", "Z'VWXYZ", "Z");
        row("a place beyond the end", {0}, 99, "WXYZV", "VWXYZV'", "V");
        row("row numbers that are none, and twice", {-1, 1, 1, 7}, 0, "WVXYZ", "W'VWXYZ", "W");
    }
    void drops()
    {
        QFETCH(QList<int>, dragged);
        QFETCH(int, target);
        QFETCH(QString, moved);
        QFETCH(QString, copied);
        QFETCH(QString, selected);
        Letters<Letter> plain(QStringLiteral("VWXYZ"));
        const QAbstractItemModelTester tester(&plain);
        QVERIFY(plain.acceptDrop(dragged, target, true, true)); // cannot be copied, so they move
        QCOMPARE(plain.shown(), moved);
        QCOMPARE(plain.selected(), selected);
        Letters<CopyableLetter> copyable(QStringLiteral("VWXYZ"));
        QVERIFY(copyable.acceptDrop(dragged, target, true, false));
        QCOMPARE(copyable.shown(), moved);
        QCOMPARE(copyable.selected(), selected);
        Letters<CopyableLetter> copies(QStringLiteral("VWXYZ"));
        QVERIFY(copies.acceptDrop(dragged, target, true, true));
        QCOMPARE(copies.shown(), copied);
        QCOMPARE(copies.selected().remove(QLatin1Char('\'')), selected);
        QVERIFY(!copies.acceptDrop(dragged, target, false, true)); // from elsewhere
        QCOMPARE(copies.shown(), copied);
    }

    void thousandsOfScatteredRowsMoveAtOnce()
    {
        Letters<Letter> table(QString(4000, QLatin1Char('x')));
        QList<int> everyOther;
        for (int row = 0; row < 4000; row += 2)
            everyOther.append(row);
        table.choose(everyOther);
        QElapsedTimer timer;
        timer.start();
        table.acceptDrop(everyOther, 4000, true, false);
        QCOMPARE(table.selected().size(), 2000);
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(ReorderableRowsTest)
#include "tst_reorderablerows.moc"
