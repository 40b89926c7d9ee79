#include "Journey.h"

#include "Controls.h"
#include "FormMainView.h"
#include "RealPointer.h"

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
    auto *table = control<QAbstractItemView>(window(), "mapRotationPreviewTableView");
    const QList<QStringList> before = shownRows(*table);
    const int last = static_cast<int>(before.size()) - 1;
    QList<QStringList> expected = before;
    expected.move(last, 0);
    if (!expect(RealPointer().drag(*table, placeIn(*table, last), placeIn(*table, 0)),
                QStringLiteral("the pointer drags a row")))
        return false;
    takePicture(QStringLiteral("dragged"));
    if (!expect(shownRows(*table) == expected,
                QStringLiteral("the dragged row is on top, and no cell has lost its text")))
        return false;
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    return expect(shownRows(*table) == before, QStringLiteral("one undo takes the drag back"));
}
