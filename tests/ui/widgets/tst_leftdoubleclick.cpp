#include "LeftDoubleClick.h"

#include <QStandardItemModel>
#include <QTableView>
#include <QTest>

class LeftDoubleClickTest : public QObject
{
    Q_OBJECT
private slots:
    void tellsOfTheRowUnderThePointer_data()
    {
        QTest::addColumn<QList<Qt::MouseButton>>("buttons");
        QTest::addColumn<QList<int>>("rows"); // clicked, one after another
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<QList<int>>("told");
        const Qt::KeyboardModifiers none;
        const Qt::KeyboardModifiers control = Qt::ControlModifier;
        using Buttons = QList<Qt::MouseButton>;
        using Rows = QList<int>;
        QTest::newRow("left") << Buttons{Qt::LeftButton} << Rows{1} << none << Rows{1};
        QTest::newRow("right") << Buttons{Qt::RightButton} << Rows{1} << none << Rows();
        QTest::newRow("middle") << Buttons{Qt::MiddleButton} << Rows{1} << none << Rows();
        QTest::newRow("right, then left") << Buttons{Qt::RightButton, Qt::LeftButton} << Rows{1, 2} << none << Rows{2};
        QTest::newRow("left, then right") << Buttons{Qt::LeftButton, Qt::RightButton} << Rows{1, 2} << none << Rows{1};
        QTest::newRow("on a row that is not selected") << Buttons{Qt::LeftButton} << Rows{1} << control << Rows{1};
        QTest::newRow("below the rows") << Buttons{Qt::LeftButton} << Rows{3} << none << Rows();
    }
    void tellsOfTheRowUnderThePointer()
    {
        QFETCH(QList<Qt::MouseButton>, buttons);
        QFETCH(QList<int>, rows);
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QStandardItemModel model(3, 1);
        QTableView view;
        view.setModel(&model);
        view.setSelectionBehavior(QAbstractItemView::SelectRows);
        view.resize(300, 300);
        view.selectRow(0);
        QList<int> told;
        connect(new LeftDoubleClick(&view), &LeftDoubleClick::doubleClicked, this,
                [&told](const QModelIndex &index) { told.append(index.row()); });
        for (qsizetype i = 0; i < buttons.size(); ++i) {
            const QPoint place(20, view.rowViewportPosition(0) + view.rowHeight(0) * rows.at(i) + 5);
            // As it comes from the desktop: a click, and in the place of the second press a double click.
            QTest::mouseClick(view.viewport(), buttons.at(i), modifiers, place);
            QTest::mouseDClick(view.viewport(), buttons.at(i), modifiers, place);
        }
        QTEST(told, "told");
    }
};

QTEST_MAIN(LeftDoubleClickTest)
#include "tst_leftdoubleclick.moc"
