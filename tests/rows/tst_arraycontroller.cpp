#include "ArrayController.h"

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
    void merges_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("stillSelected");
        const auto row = [](const char *name, const char *before, const char *after, const char *selected,
                            const char *stillSelected) {
            QTest::newRow(name) << QString(before) << QString(after) << QString(selected) << QString(stillSelected);
        };
        row("to nothing", "a1 b2", "", "b", "");
        row("moved, gone, new and changed", "a1 b2 c3 d4", "x0 d4 y7 a9", "ad", "d4 a9");
        row("a key twice", "a1 b2", "a1 a5 b2", "a", "a1 a5");
        row("one of two equal keys goes", "a1 a2 b3", "b3 a2", "b", "b3");
    }
    void merges()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        QFETCH(QString, selected);
        Controller controller(columns(), keyOf);
        const QAbstractItemModelTester tester(&controller);
        const QAbstractItemModelTester arrangedTester(controller.arranged());
        controller.mergeContent(rowsOf(before));
        select(controller, selected);
        controller.mergeContent(rowsOf(after));
        QCOMPARE(textOf(controller.content()), after);
        QTEST(textOf(controller.selectedObjects()), "stillSelected");
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

    void sortsNumbersAsNumbersAndBeforeTexts()
    {
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf(QStringLiteral("a10 b9 cB d100 ea f-1")));
        controller.arranged()->sort(1, Qt::AscendingOrder);
        QCOMPARE(textOf(controller.arrangedObjects()), QStringLiteral("f-1 b9 a10 d100 ea cB"));
        controller.arranged()->sort(1, Qt::DescendingOrder);
        QCOMPARE(textOf(controller.arrangedObjects()), QStringLiteral("cB ea d100 a10 b9 f-1"));
        select(controller, QStringLiteral("fd"));
        QCOMPARE(textOf(controller.selectedObjects()), QStringLiteral("d100 f-1"));
    }

    void aFilterNarrowsWhatIsShownOnly()
    {
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf(QStringLiteral("aRed bblue cred")));
        select(controller, QStringLiteral("bc"));
        controller.setFilterText(QStringLiteral("RED"));
        QCOMPARE(controller.arranged()->rowCount(), 2);
        QCOMPARE(textOf(controller.selectedObjects()), QStringLiteral("bblue cred"));
        QCOMPARE(controller.hiddenSelectedCount(), 1);
        QCOMPARE(controller.arrangedObjects().size(), 3);
        controller.mergeContent(rowsOf(QStringLiteral("bblue cred aRed dgreen")));
        QCOMPARE(textOf(controller.content()), QStringLiteral("bblue cred aRed dgreen"));
        controller.setFilterText({});
        QCOMPARE(textOf(controller.selectedObjects()), QStringLiteral("bblue cred"));
    }

    void aChoiceKeepsOrReplacesWhatTheFilterHides_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<int>("row"); // of the two that are shown
        QTest::addColumn<QString>("selected");
        using Model = QItemSelectionModel;
        QTest::newRow("added") << int(Model::Select | Model::Rows) << 0 << "aRed bblue cred";
        QTest::newRow("taken away") << int(Model::Deselect | Model::Rows) << 0 << "bblue cred";
        QTest::newRow("chosen anew") << int(Model::ClearAndSelect | Model::Rows) << 0 << "aRed";
        QTest::newRow("the same chosen anew") << int(Model::ClearAndSelect | Model::Rows) << 1 << "cred";
        QTest::newRow("nothing") << int(Model::Clear) << 0 << "";
    }
    void aChoiceKeepsOrReplacesWhatTheFilterHides()
    {
        QFETCH(int, command);
        QFETCH(int, row);
        QFETCH(QString, selected);
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf(QStringLiteral("aRed bblue cred")));
        select(controller, QStringLiteral("bc"));
        controller.setFilterText(QStringLiteral("red"));
        const QSignalSpy changes(controller.selection(), &QItemSelectionModel::selectionChanged);
        controller.selection()->select(controller.arranged()->index(row, 0),
                                       QItemSelectionModel::SelectionFlags(command));
        QCOMPARE(textOf(controller.selectedObjects()), selected);
        QCOMPARE(changes.isEmpty(), selected == QLatin1String("bblue cred")); // also where a hidden one has gone
    }

    void aRowIsShownIfItHoldsEveryWord_data()
    {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("shown");
        QTest::newRow("one") << "red"
                             << "ac";
        QTest::newRow("two, in two cells") << "red a"
                                           << "a";
        QTest::newRow("two that no row holds") << "red b"
                                               << "";
        QTest::newRow("blanks") << "  RED  c "
                                << "c";
    }
    void aRowIsShownIfItHoldsEveryWord()
    {
        QFETCH(QString, filter);
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf(QStringLiteral("ared bblue cred")));
        controller.setFilterText(filter);
        QString shown;
        for (int row = 0; row < controller.arranged()->rowCount(); ++row)
            shown += controller.arranged()->index(row, 0).data().toString();
        QTEST(shown, "shown");
    }

    void removesTheSelectedRows()
    {
        Controller controller(columns(), keyOf);
        controller.mergeContent(rowsOf(QStringLiteral("c3 a1 b2")));
        controller.addObject(Row{QStringLiteral("d"), QStringLiteral("0")});
        controller.arranged()->sort(0, Qt::AscendingOrder);
        select(controller, QStringLiteral("ad"));
        controller.removeSelected();
        QCOMPARE(textOf(controller.content()), QStringLiteral("c3 b2"));
    }
};

QTEST_GUILESS_MAIN(ArrayControllerTest)
#include "tst_arraycontroller.moc"
