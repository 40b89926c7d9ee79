#include "RowsUndo.h"
#include "ShownLetters.h"

#include <QClipboard>
#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QLineEdit>
#include <QSignalSpy>

/// Presses at the row and moves off. @return the drag that has begun, none if none has. Without a display Qt ends it at
/// once, and forgets it in the next turn of the event loop.
template <typename Entry>
static QDrag *startDrag(ShownLetters<Entry> &shown, int row)
{
    QTest::mousePress(shown.table.viewport(), Qt::LeftButton, {}, shown.at(row));
    for (const int distance : {1, 40})
        QTest::mouseEvent(QTest::MouseMove, shown.table.viewport(), Qt::NoButton, {},
                          shown.at(row) + QPoint(distance, 0));
    QTest::mouseRelease(shown.table.viewport(), Qt::LeftButton, {}, shown.at(row) + QPoint(40, 0));
    return shown.table.template findChild<QDrag *>();
}

/// What Qt sends to the table when something is dropped on it. @return whether the table takes it.
static bool drop(KeyHandlingTableView &table, const QMimeData *data, const QPoint &place)
{
    const Qt::DropActions actions = Qt::MoveAction | Qt::CopyAction;
    QDragEnterEvent enter(place, actions, data, Qt::LeftButton, {});
    QDragMoveEvent move(place, actions, data, Qt::LeftButton, {});
    QDropEvent end(place, actions, data, Qt::LeftButton, {});
    for (QDropEvent *event : {static_cast<QDropEvent *>(&enter), static_cast<QDropEvent *>(&move), &end}) {
        event->setDropAction(Qt::MoveAction);
        event->ignore();
        QCoreApplication::sendEvent(table.viewport(), event);
    }
    return move.isAccepted() && end.isAccepted();
}

class KeyHandlingTableTest : public QObject
{
    Q_OBJECT
private slots:
    void dragsRows_data()
    {
        QTest::addColumn<QList<int>>("selected");
        QTest::addColumn<int>("pressed");
        QTest::addColumn<int>("target");   // the row that the drop falls on
        QTest::addColumn<bool>("isLower"); // on its lower half
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("chosen");
        QTest::newRow("a row that was not selected") << QList<int>{0} << 2 << 0 << false << "XVWYZ"
                                                     << "X";
        QTest::newRow("several together") << QList<int>{1, 3} << 3 << 0 << false << "WYVXZ"
                                          << "WY";
        QTest::newRow("on the lower half of a row") << QList<int>{0, 1} << 0 << 3 << true << "XYVWZ"
                                                    << "VW";
        QTest::newRow("below the last row") << QList<int>{0, 1} << 0 << 7 << false << "XYZVW"
                                            << "VW";
    }
    void dragsRows()
    {
        QFETCH(QList<int>, selected);
        QFETCH(int, pressed);
        QFETCH(int, target);
        QFETCH(bool, isLower);
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        RowsUndo undo(shown.rows, shown.rows);
        shown.rows.choose(selected);
        const QDrag *drag = startDrag(shown, pressed);
        QVERIFY(drag != nullptr);
        QVERIFY(drop(shown.table, drag->mimeData(), shown.at(target, isLower)));
        QTEST(shown.rows.shown(), "shown");
        QTEST(shown.rows.selected(), "chosen");
        undo.undo();
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWXYZ"));
        QCOMPARE(undo.stack()->index(), 0);
    }

    void aSortedTableIsNotRearranged()
    {
        ShownLetters<Letter> shown(QString(4, u'X'));
        shown.rows.arranged()->sort(0);
        QVERIFY(startDrag(shown, 1) == nullptr);
        shown.rows.choose({1});
        const QSignalSpy moves(&shown.rows, &QAbstractItemModel::layoutChanged);
        QTest::keyClick(&shown.table, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(moves.size(), 0);
    }

    void aClickWithoutADragChooses()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose({0, 1, 2});
        QTest::mousePress(shown.table.viewport(), Qt::LeftButton, {}, shown.at(1));
        QCOMPARE(shown.rows.selected(), QStringLiteral("VWX"));
        QTest::mouseRelease(shown.table.viewport(), Qt::LeftButton, {}, shown.at(1));
        QCOMPARE(shown.rows.selected(), QStringLiteral("W"));
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ControlModifier, shown.at(3));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
    }

    void altAndArrowsMoveTheSelection()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose({1, 3});
        QTest::keyClick(&shown.table, Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(shown.rows.shown(), QStringLiteral("VXZWY"));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
        QTest::keyClick(&shown.table, Qt::Key_Down, Qt::AltModifier); // they are at the end
        QCOMPARE(shown.rows.shown(), QStringLiteral("VXZWY"));
        QTest::keyClick(&shown.table, Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(shown.rows.shown(), QStringLiteral("VXWYZ"));
    }

    void keysThatAreTypedIntoACellStayThere_data()
    {
        QTest::addColumn<QKeyCombination>("key");
        QTest::newRow("Alt+Up") << (Qt::ALT | Qt::Key_Up);
        QTest::newRow("Alt+Up of the keypad") << QKeyCombination(Qt::AltModifier | Qt::KeypadModifier, Qt::Key_Up);
        QTest::newRow("Delete") << QKeyCombination(Qt::Key_Delete);
        QTest::newRow("paste") << (Qt::CTRL | Qt::Key_V);
    }
    void keysThatAreTypedIntoACellStayThere()
    {
        QFETCH(QKeyCombination, key);
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
        shown.table.setDeleteHandler([&] { shown.rows.removeSelected(); });
        const QSignalSpy pastes(&shown.table, &KeyHandlingTableView::pasteRequested);
        QGuiApplication::clipboard()->setText(QStringLiteral("p"));
        shown.rows.choose({1});
        QTest::keyClick(&shown.table, Qt::Key_Return);
        auto *field = shown.table.findChild<QLineEdit *>();
        QVERIFY(field != nullptr && field->hasFocus());
        field->setText(QStringLiteral("w"));
        QTest::keyClick(field, key.key(), key.keyboardModifiers());
        shown.table.finishEditing();
        QCOMPARE(shown.rows.shown().remove(QStringLiteral("p")), QStringLiteral("VwX"));
        QCOMPARE(pastes.size(), 0);
    }

    void returnEditsTheFirstEditableCell()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
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
    }
};

QTEST_MAIN(KeyHandlingTableTest)
#include "tst_keyhandlingtable.moc"
