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
        drop("several up", {3, 1}, 0, -1, "WYVXZ", "WY");
        drop("several down", {0, 1}, 4, -1, "XYVWZ", "VW");
        drop("behind the last", {0, 2}, 5, -1, "WYZVX", "VX");
        drop("below the last", {0, 2}, -1, -1, "WYZVX", "VX");
        drop("on a row", {3}, -1, 1, "VYWXZ", "Y");
        drop("on itself", {2}, -1, 2, "VWXYZ", "X");
        drop("to its own place", {2}, 2, -1, "VWXYZ", "X");
        drop("one above is removed", {2, 3}, 0, -1, "XYWZ", "XY", remove({0}));
        drop("one of them is removed", {1, 3}, 0, -1, "YVXZ", "Y", remove({1}));
        drop("they are put elsewhere", {1}, 1, -1, "VWXYZ", "W",
             [](auto &letters) { QVERIFY(letters.acceptDrop({1}, 5, true, false)); });
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
        QTest::newRow("while dragging is off") << Meanwhile([](auto &letters) { letters.setDraggingEnabled(false); });
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
        if (letters.isReorderable())
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

    void theCopyKeyCopiesWhatCanBeCopied()
    {
        Letters<CopyableLetter> copyable(QStringLiteral("VWX"));
        QVERIFY(copyable.arranged()->supportedDragActions().testFlag(Qt::CopyAction));
        const std::unique_ptr<QMimeData> data = take(copyable, {0, 2});
        QVERIFY(copyable.arranged()->dropMimeData(data.get(), Qt::CopyAction, 1, 0, {}));
        QCOMPARE(copyable.shown(), QStringLiteral("VV'X'WX"));
        QCOMPARE(copyable.selected(), QStringLiteral("V'X'"));
        Letters<Letter> plain(QStringLiteral("VWX"));
        QCOMPARE(plain.arranged()->supportedDragActions(), Qt::DropActions(Qt::MoveAction));
        QCOMPARE(plain.arranged()->supportedDropActions(), Qt::DropActions(Qt::MoveAction));
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
