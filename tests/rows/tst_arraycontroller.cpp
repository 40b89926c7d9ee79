#include "ArrayController.h"
#include "DataColumns.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

struct Row {
    QString key;
    QString value;
    bool operator==(const Row &) const = default;
};

using Controller = ArrayController<Row>;

static QVariant numberOrText(const Row &row)
{
    bool isNumber = false;
    const int number = row.value.toInt(&isNumber);
    return isNumber ? QVariant(number) : QVariant(row.value);
}

static QList<Controller::Column> columns()
{
    return {{QStringLiteral("Key"), [](const Row &row) { return row.key; }, nullptr},
            {QStringLiteral("Value"), [](const Row &row) { return row.value; }, numberOrText}};
}

static QString keyOf(const Row &row)
{
    return row.key;
}

/// "a1 b2" makes the rows (a, 1) and (b, 2).
static QList<Row> rowsOf(const QString &text)
{
    QList<Row> rows;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        rows.append(Row{word.left(1), word.mid(1)});
    return rows;
}

static QString textOf(const QList<Row> &rows)
{
    QStringList words;
    for (const Row &row : rows)
        words.append(row.key + row.value);
    return words.join(QLatin1Char(' '));
}

static void select(Controller &controller, const QString &keys)
{
    controller.selection()->clear();
    for (int row = 0; row < controller.arranged()->rowCount(); ++row) {
        const QModelIndex index = controller.arranged()->index(row, 0);
        if (keys.contains(index.data().toString()))
            controller.selection()->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
}

class ArrayControllerTest : public QObject
{
    Q_OBJECT
private slots:
    void mergesEqualKeys()
    {
        Controller controller(columns(), keyOf);
        const QAbstractItemModelTester tester(&controller);
        const QAbstractItemModelTester arrangedTester(controller.arranged());
        controller.mergeContent(rowsOf("a1 b2"));
        select(controller, "a");
        controller.mergeContent(rowsOf("a1 a5 b2"));
        QCOMPARE(textOf(controller.content()), "a1 a5 b2");
        QCOMPARE(textOf(controller.selectedObjects()), "a1 a5");
        controller.mergeContent(rowsOf("b3 a2"));
        QCOMPARE(textOf(controller.content()), "b3 a2");
        controller.mergeContent({});
        QVERIFY(controller.selectedObjects().isEmpty());
    }

    void randomMergesKeepOrderAndSelection()
    {
        QRandomGenerator random(7);
        Controller controller(columns(), keyOf);
        const QAbstractItemModelTester tester(&controller);
        const QAbstractItemModelTester arrangedTester(controller.arranged());
        controller.arranged()->sort(1, Qt::DescendingOrder);
        for (int round = 0; round < 200; ++round) {
            QList<Row> rows;
            for (char key = 'a'; key <= 'h'; ++key) {
                if (random.bounded(3) > 0)
                    rows.insert(random.bounded(static_cast<int>(rows.size()) + 1),
                                Row{QString(QLatin1Char(key)), QString::number(random.bounded(12))});
            }
            select(controller, QStringLiteral("bdf"));
            QSet<QString> expected;
            for (const Row &row : controller.selectedObjects())
                expected.insert(row.key);
            controller.mergeContent(rows);
            QCOMPARE(controller.content(), rows);
            for (const Row &row : controller.selectedObjects())
                QVERIFY(expected.remove(row.key));
            for (const Row &row : std::as_const(rows))
                QVERIFY(!expected.contains(row.key));
        }
    }

    void aChoiceKeepsOrReplacesWhatTheFilterHides()
    {
        using Model = QItemSelectionModel;
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf("aRed bblue cred"));
        select(controller, "bc");
        controller.setFilterText("red");
        const QSignalSpy changes(controller.selection(), &Model::selectionChanged);
        for (const auto &[command, selected] : {std::pair(Model::Select, "aRed bblue cred"),
                                                {Model::Deselect, "bblue cred"},
                                                {Model::ClearAndSelect, "aRed"}}) {
            const qsizetype before = changes.size();
            controller.selection()->select(controller.arranged()->index(0, 0), command | Model::Rows);
            QVERIFY(changes.size() > before); // also where a hidden one has gone
            QCOMPARE(textOf(controller.selectedObjects()), selected);
        }
    }

    void aRowIsShownIfItHoldsEveryWord()
    {
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf("ared bblue cred"));
        for (const auto &[filter, count] : {std::pair("red", 2), {"red a", 1}, {"red b", 0}, {"  RED  c ", 1}}) {
            controller.setFilterText(filter);
            QCOMPARE(controller.arranged()->rowCount(), count);
        }
    }
};

QTEST_GUILESS_MAIN(ArrayControllerTest)
#include "tst_arraycontroller.moc"
