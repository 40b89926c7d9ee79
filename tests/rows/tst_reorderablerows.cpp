#include "Letters.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QMimeData>
#include <QTest>

#include <functional>

using Meanwhile = std::function<void(Letters<Letter> &)>;

template <typename Entry>
static std::unique_ptr<QMimeData> take(Letters<Entry> &letters, const QList<int> &rows)
{
    QModelIndexList cells;
    for (const int row : rows)
        cells << letters.arranged()->index(row, 0) << letters.arranged()->index(row, 1);
    return std::unique_ptr<QMimeData>(letters.arranged()->mimeData(cells));
}

class ReorderableRowsTest : public QObject
{
    Q_OBJECT
private slots:
    void moves_data()
    {
        QTest::addColumn<QList<int>>("moved");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("selected");
        const auto row = [](const char *name, const QList<int> &moved, int target, const char *shown,
                            const char *selected) {
            QTest::newRow(name) << moved << target << QString(shown) << QString(selected);
        };
        row("gathered at the top", {1, 3}, 0, "WYVXZ", "WY");
        row("down as a block", {0, 1}, 4, "XYVWZ", "VW");
        row("from both sides", {4, 0, 3}, 2, "WVYZX", "VYZ");
        row("to the end", {2, 0}, 5, "WYZVX", "VX");
        row("onto itself", {2}, 2, "VWXYZ", "X");
        row("just below itself", {1, 2}, 3, "VWXYZ", "WX");
        row("a negative place is the top", {4}, -1, "ZVWXY", "Z");
        row("a place beyond the end", {0}, 99, "WXYZV", "V");
        row("row numbers that are none, and twice", {-1, 1, 1, 7}, 0, "WVXYZ", "W");
    }
    void moves()
    {
        QFETCH(QList<int>, moved);
        QFETCH(int, target);
        Letters<Letter> letters(QStringLiteral("VWXYZ"));
        const QAbstractItemModelTester tester(&letters);
        QVERIFY(letters.moveObjectsInArrangedObjects(moved, target));
        QTEST(letters.shown(), "shown");
        QTEST(letters.selected(), "selected");
    }

    void aDropMovesWhatWasTaken_data()
    {
        QTest::addColumn<QList<int>>("taken");
        QTest::addColumn<Meanwhile>("meanwhile");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("on"); // the row that it falls on, for a drop that is not between two
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("selected");
        const auto drop = [](
                              const char *name, const QList<int> &taken, int row, int on, const char *shown,
                              const char *selected, const Meanwhile &meanwhile = [](auto &) {}) {
            QTest::newRow(name) << taken << meanwhile << row << on << QString(shown) << QString(selected);
        };
        const auto remove = [](const QList<int> &rows) -> Meanwhile {
            return [rows](auto &letters) {
                letters.choose(rows);
                letters.removeSelected();
            };
        };
        drop("behind the last", {0, 2}, 5, -1, "WYZVX", "VX");
        drop("below the last", {0, 2}, -1, -1, "WYZVX", "VX");
        drop("on a row", {3}, -1, 1, "VYWXZ", "Y");
        drop("on itself", {2}, -1, 2, "VWXYZ", "X");
        drop("one above is removed", {2, 3}, 0, -1, "XYWZ", "XY", remove({0}));
        drop("one of them is removed", {1, 3}, 0, -1, "YVXZ", "Y", remove({1}));
        drop("they are put elsewhere", {1}, 1, -1, "VWXYZ", "W",
             [](auto &letters) { QVERIFY(letters.moveObjectsInArrangedObjects({1}, 5)); });
        drop("others come in above", {1, 3}, 1, -1, "aWYbVXZ", "WY", [](auto &letters) {
            letters.insertObjects(0, {std::make_shared<Letter>(Letter{QStringLiteral("a")}),
                                      std::make_shared<Letter>(Letter{QStringLiteral("b")})});
        });
        drop("they are removed and come back", {1}, 0, -1, "WVXYZ", "W", [](auto &letters) {
            const std::unique_ptr<RowsState> before = letters.state();
            letters.removeAll();
            letters.restore(*before);
        });
    }
    void aDropMovesWhatWasTaken()
    {
        QFETCH(QList<int>, taken);
        QFETCH(Meanwhile, meanwhile);
        QFETCH(int, row);
        QFETCH(int, on);
        Letters<Letter> letters(QStringLiteral("VWXYZ"));
        ArrangedRows &model = *letters.arranged();
        const QAbstractItemModelTester tester(&model);
        const std::unique_ptr<QMimeData> data = take(letters, taken);
        QVERIFY(data != nullptr);
        meanwhile(letters);
        const QModelIndex parent = on < 0 ? QModelIndex() : model.index(on, 1);
        const int column = row < 0 ? -1 : 1;
        QVERIFY(model.canDropMimeData(data.get(), Qt::MoveAction, row, column, parent));
        QVERIFY(model.dropMimeData(data.get(), Qt::MoveAction, row, column, parent));
        QTEST(letters.shown(), "shown");
        QTEST(letters.selected(), "selected");
    }

    void aDropIsRefused_data()
    {
        QTest::addColumn<Meanwhile>("meanwhile");
        QTest::newRow("of rows that are gone") << Meanwhile([](auto &letters) { letters.removeSelected(); });
        QTest::newRow("of rows of an emptied table") << Meanwhile([](auto &letters) { letters.removeAll(); });
        QTest::newRow("while the table is sorted") << Meanwhile([](auto &letters) { letters.arranged()->sort(1); });
        QTest::newRow("while the table is filtered")
            << Meanwhile([](auto &letters) { letters.setFilterText(QStringLiteral("x")); });
    }
    void aDropIsRefused()
    {
        QFETCH(Meanwhile, meanwhile);
        Letters<Letter> letters(QStringLiteral("ZYXWV"));
        letters.choose({1, 2});
        const std::unique_ptr<QMimeData> data = take(letters, {1, 2});
        meanwhile(letters);
        ArrangedRows &model = *letters.arranged();
        const QString left = letters.shown();
        const QString selected = letters.selected();
        for (const int row : {-1, 0, model.rowCount()}) {
            QVERIFY(!model.canDropMimeData(data.get(), Qt::MoveAction, row, row < 0 ? -1 : 0, {}));
            QVERIFY(!model.dropMimeData(data.get(), Qt::MoveAction, row, row < 0 ? -1 : 0, {}));
        }
        QCOMPARE(letters.shown(), left);
        QCOMPARE(letters.selected(), selected);
        if (letters.isInOwnOrder())
            return;
        QVERIFY(!model.flags(model.index(0, 0)).testFlag(Qt::ItemIsDragEnabled)); // nor does another begin
        QVERIFY(take(letters, {0}) == nullptr);
    }

    void whatComesFromElsewhereIsRefused()
    {
        Letters<Letter> letters(QStringLiteral("VWX"));
        Letters<Letter> others(QStringLiteral("VWX"));
        ArrangedRows &model = *letters.arranged();
        const std::unique_ptr<QMimeData> ofAnotherTable = take(others, {0, 1});
        QMimeData ofAnotherProgram; // with the type of ours, as another of our windows would send it
        ofAnotherProgram.setData(model.mimeTypes().constFirst(), QByteArrayLiteral("0"));
        ofAnotherProgram.setText(QStringLiteral("V"));
        for (const QMimeData *data : {ofAnotherTable.get(), &ofAnotherProgram}) {
            for (const Qt::DropAction action : {Qt::MoveAction, Qt::CopyAction}) {
                QVERIFY(!model.canDropMimeData(data, action, 2, 0, {}));
                QVERIFY(!model.dropMimeData(data, action, 2, 0, {}));
            }
        }
        QCOMPARE(letters.shown(), QStringLiteral("VWX"));
        QCOMPARE(others.shown(), QStringLiteral("VWX"));
    }

    void theCopyKeyMovesAsWell()
    {
        Letters<Letter> letters(QStringLiteral("VWX"));
        QCOMPARE(letters.arranged()->supportedDragActions(), Qt::DropActions(Qt::MoveAction));
        const std::unique_ptr<QMimeData> data = take(letters, {0, 1});
        QVERIFY(letters.arranged()->dropMimeData(data.get(), Qt::CopyAction, 3, 0, {}));
        QCOMPARE(letters.shown(), QStringLiteral("XVW"));
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
        QVERIFY(table.moveObjectsInArrangedObjects(everyOther, 4000));
        QCOMPARE(table.selected().size(), 2000);
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_GUILESS_MAIN(ReorderableRowsTest)
#include "tst_reorderablerows.moc"
