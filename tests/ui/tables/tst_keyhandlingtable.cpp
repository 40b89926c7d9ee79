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
static QDrag *startDrag(ShownLetters<Entry> &shown, int row, Qt::KeyboardModifiers modifiers = {})
{
    QTest::mousePress(shown.table.viewport(), Qt::LeftButton, modifiers, shown.at(row));
    for (const int distance : {1, 40})
        QTest::mouseEvent(QTest::MouseMove, shown.table.viewport(), Qt::NoButton, modifiers,
                          shown.at(row) + QPoint(distance, 0));
    QTest::mouseRelease(shown.table.viewport(), Qt::LeftButton, modifiers, shown.at(row) + QPoint(40, 0));
    return shown.table.template findChild<QDrag *>();
}

/// What Qt sends to the table when something is dropped on it. @return whether the table takes it.
static bool drop(KeyHandlingTableView &table, const QMimeData *data, const QPoint &place,
                 Qt::KeyboardModifiers modifiers = {})
{
    const Qt::DropActions actions = Qt::MoveAction | Qt::CopyAction;
    QDragEnterEvent enter(place, actions, data, Qt::LeftButton, modifiers);
    QDragMoveEvent move(place, actions, data, Qt::LeftButton, modifiers);
    QDropEvent end(place, actions, data, Qt::LeftButton, modifiers);
    for (QDropEvent *event : {static_cast<QDropEvent *>(&enter), static_cast<QDropEvent *>(&move), &end}) {
        event->setDropAction(modifiers == Qt::NoModifier ? Qt::MoveAction : Qt::CopyAction);
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
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("chosen");
        const auto row = [](const char *name, const QList<int> &selected, int pressed, int target, bool isLower,
                            Qt::KeyboardModifiers modifiers, const char *shown, const char *chosen) {
            QTest::newRow(name) << selected << pressed << target << isLower << modifiers << QString(shown)
                                << QString(chosen);
        };
        row("a row that was not selected", {0}, 2, 0, false, Qt::NoModifier, "XVWYZ", "X");
        row("several together", {1, 3}, 3, 0, false, Qt::NoModifier, "WYVXZ", "WY");
        row("on the lower half of a row", {0, 1}, 0, 3, true, Qt::NoModifier, "XYVWZ", "VW");
        row("below the last row", {0, 1}, 0, 7, false, Qt::NoModifier, "XYZVW", "VW");
        row("onto its own place", {}, 2, 2, true, Qt::NoModifier, "VWXYZ", "X");
    }
    void dragsRows()
    {
        QFETCH(QList<int>, selected);
        QFETCH(int, pressed);
        QFETCH(int, target);
        QFETCH(bool, isLower);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        RowsUndo undo(shown.rows, shown.rows);
        shown.rows.choose(selected);
        const QDrag *drag = startDrag(shown, pressed, modifiers);
        QVERIFY(drag != nullptr);
        QVERIFY(drop(shown.table, drag->mimeData(), shown.at(target, isLower), modifiers));
        QTEST(shown.rows.shown(), "shown");
        QTEST(shown.rows.selected(), "chosen");
        undo.undo();
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWXYZ"));
        QCOMPARE(undo.stack()->index(), 0);
    }

    void takesNothingFromElsewhere()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
        ShownLetters<Letter> other(QStringLiteral("abc"));
        const QDrag *drag = startDrag(other, 1);
        QVERIFY(drag != nullptr);
        QVERIFY(!drop(shown.table, drag->mimeData(), shown.at(1)));
        QMimeData foreign; // another console's, or another program's
        foreign.setData(shown.rows.mimeTypes().constFirst(), QByteArrayLiteral("0"));
        foreign.setText(QStringLiteral("a"));
        QVERIFY(!drop(shown.table, &foreign, shown.at(1)));
        shown.table.setRows(nullptr);
        QVERIFY(!shown.table.acceptDrops() && !shown.table.viewport()->acceptDrops() && !shown.table.dragEnabled());
        QCOMPARE(shown.rows.shown(), QStringLiteral("VWX"));
        QCOMPARE(other.rows.shown(), QStringLiteral("abc"));
    }

    void noDragBegins_data()
    {
        using Before = std::function<void(ShownLetters<Letter> &)>;
        QTest::addColumn<Before>("before");
        QTest::newRow("in a sorted table") << Before([](auto &shown) { shown.rows.arranged()->sort(0); });
        QTest::newRow("in a filtered table")
            << Before([](auto &shown) { shown.rows.setFilterText(QStringLiteral("x")); });
    }
    void noDragBegins()
    {
        QFETCH(std::function<void(ShownLetters<Letter> &)>, before);
        ShownLetters<Letter> shown(QString(4, u'X'));
        before(shown);
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
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ShiftModifier, shown.at(3));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WXY"));
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ControlModifier, shown.at(2));
        QCOMPARE(shown.rows.selected(), QStringLiteral("WY"));
        QTest::mouseClick(shown.table.viewport(), Qt::LeftButton, Qt::ControlModifier, shown.at(0));
        QCOMPARE(shown.rows.selected(), QStringLiteral("VWY"));
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
        ShownLetters<Letter> shown(QStringLiteral("VWXYZ"));
        shown.rows.choose(selected);
        const QString chosen = shown.rows.selected();
        QTest::keyClick(&shown.table, key, Qt::AltModifier);
        QTEST(shown.rows.shown(), "shown");
        QCOMPARE(shown.rows.selected(), chosen);
    }

    void keysThatAreTypedIntoACellStayThere_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        const Qt::KeyboardModifiers alt = Qt::AltModifier;
        QTest::newRow("Alt+Up") << Qt::Key_Up << alt;
        QTest::newRow("Alt+Down") << Qt::Key_Down << alt;
        QTest::newRow("Alt+Up of the keypad") << Qt::Key_Up << (alt | Qt::KeypadModifier);
        QTest::newRow("Delete") << Qt::Key_Delete << Qt::KeyboardModifiers();
        QTest::newRow("paste") << Qt::Key_V << Qt::KeyboardModifiers(Qt::ControlModifier);
    }
    void keysThatAreTypedIntoACellStayThere()
    {
        QFETCH(Qt::Key, key);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
        shown.table.setDeleteHandler([&] { shown.rows.removeSelected(); });
        const QSignalSpy pastes(&shown.table, &KeyHandlingTableView::pasteRequested);
        QGuiApplication::clipboard()->setText(QStringLiteral("p"));
        shown.rows.choose({1});
        QTest::keyClick(&shown.table, Qt::Key_Return);
        auto *field = shown.table.findChild<QLineEdit *>();
        QVERIFY(field != nullptr && field->hasFocus());
        field->setText(QStringLiteral("w"));
        QTest::keyClick(field, key, modifiers);
        shown.table.finishEditing();
        QCOMPARE(shown.rows.content().at(1)->text.left(1), QStringLiteral("w"));
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
        shown.table.setColumnHidden(1, true); // the only one that can be edited
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QVERIFY(!shown.table.performKeyPressFromKeyDown(&key));
        QCOMPARE(beeps.size(), 1);
    }

    void deleteAsksWhoDeletes()
    {
        ShownLetters<Letter> shown(QStringLiteral("VWX"));
        const QSignalSpy beeps(&shown.table, &KeyHandlingTableView::beeped);
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
        QVERIFY(!shown.table.performKeyPressFromKeyDown(&key)); // nobody
        shown.table.setDeleteHandler([&] { shown.rows.removeSelected(); });
        QVERIFY(shown.table.performKeyPressFromKeyDown(&key));
        QCOMPARE(beeps.size(), 1);
        shown.rows.choose({0, 2});
        QTest::keyClick(&shown.table, Qt::Key_Backspace);
        QCOMPARE(shown.rows.shown(), QStringLiteral("W"));
    }

    void longTextsAreKeptWhole()
    {
        ShownLetters<Letter> shown(QStringLiteral("V"));
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
