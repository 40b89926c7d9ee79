#include "Journey.h"

#include "Controls.h"
#include "FormMainView.h"
#include "KeyHandlingTableView.h"
#include "RealPointer.h"

static QList<QStringList> cellsOf(const QAbstractItemView &table)
{
    const QAbstractItemModel &model = *table.model();
    QList<QStringList> rows(model.rowCount());
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 0; column < model.columnCount(); ++column)
            rows[row].append(model.index(row, column).data().toString());
    }
    return rows;
}

static QPoint placeIn(const QAbstractItemView &table, int row)
{
    const QRect cell = table.visualRect(table.model()->index(row, 0));
    return cell.topLeft() + QPoint(cell.width() / 4, cell.height() / 4);
}

bool Journey::dragARow()
{
    if (!RealPointer::isThere()) {
        qInfo("journey: \"%s\" has no pointer to drag a row with: that step is left out",
              qPrintable(QGuiApplication::platformName()));
        return true;
    }
    auto *table = control<KeyHandlingTableView>(window(), "mapRotationPreviewTableView");
    const QList<QStringList> before = cellsOf(*table);
    const int last = static_cast<int>(before.size()) - 1;
    QList<QStringList> expected = before;
    expected.move(last, 0);
    if (!expect(RealPointer().drag(*table, placeIn(*table, last), placeIn(*table, 0)),
                QStringLiteral("the pointer drags a row")))
        return false;
    takePicture(QStringLiteral("dragged"));
    if (!expect(cellsOf(*table) == expected,
                QStringLiteral("the dragged row is on top, and no cell has lost its text")))
        return false;
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    return expect(cellsOf(*table) == before, QStringLiteral("one undo takes the drag back"));
}
