#include "DataColumns.h"
#include "Letters.h"

#include <QAbstractItemModelTester>
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
        const auto row = dataColumns<QList<int>, int, QString, QString>("moved", "target", "shown", "selected");
        row("gathered at the top", {1, 3}, 0, "WYVXZ", "WY");
        row("from both sides", {4, 0, 3}, 2, "WVYZX", "VYZ");
        row("to the end", {2, 0}, 5, "WYZVX", "VX");
        row("just below itself", {1, 2}, 3, "VWXYZ", "WX");
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
        drop("on a row", {3}, -1, 1, "VYWXZ", "Y");
        drop("one above is removed", {2, 3}, 0, -1, "XYWZ", "XY", remove({0}));
        drop("one of them is removed", {1, 3}, 0, -1, "YVXZ", "Y", remove({1}));
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
        QVERIFY(model.dropMimeData(data.get(), Qt::CopyAction, row, column, parent)); // that key moves as well
        QTEST(letters.shown(), "shown");
        QTEST(letters.selected(), "selected");
    }

    void aDropIsRefused_data()
    {
        const auto row = dataColumns<Meanwhile>("meanwhile");
        row("of rows that are gone", Meanwhile([](auto &letters) { letters.removeSelected(); }));
        row("while the table is sorted", Meanwhile([](auto &letters) { letters.arranged()->sort(1); }));
        row("while the table is filtered",
            Meanwhile([](auto &letters) { letters.setFilterText(QStringLiteral("x")); }));
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
        QVERIFY(letters.isInOwnOrder() || take(letters, {0}) == nullptr); // nor does another drag begin
    }

    void whatComesFromElsewhereIsRefused()
    {
        Letters<Letter> letters("VWX");
        Letters<Letter> others("VWX");
        ArrangedRows &model = *letters.arranged();
        const std::unique_ptr<QMimeData> ofAnotherTable = take(others, {0, 1});
        QMimeData ofAnotherProgram; // with the type of ours, as another of our windows would send it
        ofAnotherProgram.setData(model.mimeTypes().constFirst(), "0");
        for (const QMimeData *data : {ofAnotherTable.get(), &ofAnotherProgram}) {
            QVERIFY(!model.canDropMimeData(data, Qt::MoveAction, 2, 0, {}));
            QVERIFY(!model.dropMimeData(data, Qt::MoveAction, 2, 0, {}));
        }
        QCOMPARE(letters.shown() + others.shown(), "VWXVWX");
    }
};

QTEST_GUILESS_MAIN(ReorderableRowsTest)
#include "tst_reorderablerows.moc"
