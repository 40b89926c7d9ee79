#include "KeyHandlingTableView.h"

#include "ReorderableRows.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

#include <algorithm>

static bool isReturn(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

static bool isDelete(int key)
{
    return key == Qt::Key_Delete || key == Qt::Key_Backspace;
}

static bool isStepKey(const QKeyEvent *event)
{
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    return isArrow && (event->modifiers() & ~Qt::KeypadModifier) == Qt::AltModifier;
}

KeyHandlingTableView::KeyHandlingTableView(QWidget *parent) : PlaceholderTable(parent)
{
    setEditTriggers(QAbstractItemView::DoubleClicked);
    setDefaultDropAction(Qt::MoveAction);
    setDragDropOverwriteMode(false); // drops fall between rows
}

void KeyHandlingTableView::setRows(ReorderableRows *rows)
{
    m_rows = rows;
    setDragDropMode(rows == nullptr ? QAbstractItemView::NoDragDrop : QAbstractItemView::DragDrop);
}

bool KeyHandlingTableView::performKeyPressFromKeyDown(const QKeyEvent *event)
{
    if (isReturn(event->key()))
        return editSelection();
    return isDelete(event->key()) && deleteSelection();
}

int KeyHandlingTableView::firstSelectedRow() const
{
    int first = -1;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        first = first < 0 ? index.row() : std::min(first, index.row());
    return first;
}

bool KeyHandlingTableView::editSelection()
{
    const int row = model() == nullptr ? -1 : firstSelectedRow();
    if (row < 0) {
        beep();
        return true;
    }
    for (int place = 0; place < horizontalHeader()->count(); ++place) {
        const QModelIndex cell = model()->index(row, horizontalHeader()->logicalIndex(place));
        if ((cell.flags() & Qt::ItemIsEditable) == 0 || isColumnHidden(cell.column()))
            continue;
        selectionModel()->setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
        edit(cell);
        return true;
    }
    return false;
}

bool KeyHandlingTableView::deleteSelection()
{
    if (!m_deleteSelection)
        return false;
    if (selectionModel() == nullptr || !selectionModel()->hasSelection())
        beep();
    else
        m_deleteSelection();
    return true;
}

void KeyHandlingTableView::beep()
{
    QApplication::beep();
    emit beeped();
}

void KeyHandlingTableView::moveSelection(int step)
{
    if (m_rows == nullptr || selectionModel() == nullptr)
        return;
    QList<int> selected;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        selected.append(index.row());
    if (selected.isEmpty())
        return;
    const auto [first, last] = std::minmax_element(selected.constBegin(), selected.constEnd());
    const int target = step < 0 ? *first - 1 : *last + 2; // before the row above, or behind the one below
    if (target < 0 || target > m_rows->arrangedCount())
        return;
    if (m_rows->moveObjectsInArrangedObjects(selected, target))
        scrollTo(currentIndex());
}

void KeyHandlingTableView::finishEditing()
{
    if (state() == QAbstractItemView::EditingState)
        setFocus(); // closing the editor leaves no widget with the focus
}

bool KeyHandlingTableView::isOwnKey(const QKeyEvent *event)
{
    return isStepKey(event) || event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Paste) ||
           (event->modifiers() == Qt::NoModifier && (isReturn(event->key()) || isDelete(event->key())));
}

bool KeyHandlingTableView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isOwnKey(static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    return PlaceholderTable::event(event);
}

void KeyHandlingTableView::keyPressEvent(QKeyEvent *event)
{
    const bool isTyping = state() == QAbstractItemView::EditingState && !hasFocus(); // the editor did not use the key
    if (!isTyping && (performKeyPressFromKeyDown(event) || handleOtherKey(event))) {
        event->accept();
        return;
    }
    PlaceholderTable::keyPressEvent(event);
}

bool KeyHandlingTableView::handleOtherKey(const QKeyEvent *event)
{
    if (isStepKey(event)) {
        moveSelection(event->key() == Qt::Key_Up ? -1 : 1);
        return true;
    }
    if (event->matches(QKeySequence::Copy)) {
        emit copyRequested();
        return true;
    }
    if (event->matches(QKeySequence::Paste)) {
        paste();
        return true;
    }
    const bool isArrow = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    if (isArrow && currentIndex().isValid() && !selectionModel()->hasSelection()) {
        // Without a current row the first arrow key selects one; otherwise the only row of a table could not be
        // reached.
        selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        return true;
    }
    return false;
}

void KeyHandlingTableView::paste()
{
    const QString text = QGuiApplication::clipboard()->text();
    if (!text.isEmpty())
        emit pasteRequested(text);
}

void KeyHandlingTableView::startDrag(Qt::DropActions actions)
{
    QMimeData *taken = model()->mimeData(selectedIndexes());
    if (taken == nullptr)
        return;
    // Qt's own startDrag() removes the selected rows after a drop, which are the rows just moved, and its picture, as
    // wide as the table, hides where the rows would fall.
    auto *drag = new QDrag(this);
    drag->setMimeData(taken);
    drag->setPixmap(pictureOfSelection());
    drag->setHotSpot(QPoint(-16, 0)); // the picture stands to the right of the pointer
    drag->exec(actions, defaultDropAction());
}

QPixmap KeyHandlingTableView::pictureOfSelection() const
{
    constexpr int mostRows = 5;
    constexpr int mostWidth = 200; // pixels
    QModelIndexList cells = selectionModel()->selectedRows(horizontalHeader()->logicalIndex(0));
    std::sort(cells.begin(), cells.end());
    QList<QRect> places;
    for (const QModelIndex &cell : std::as_const(cells)) {
        const QRect place = visualRect(cell);
        if (places.size() < mostRows && viewport()->rect().contains(place.center()))
            places.append({place.topLeft(), QSize(std::min(place.width(), mostWidth), place.height())});
    }
    if (places.isEmpty())
        return {};
    const QSize size(places.constFirst().width(), places.constFirst().height() * static_cast<int>(places.size()));
    QPixmap picture(size * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&picture);
    for (int row = 0; row < places.size(); ++row)
        painter.drawPixmap(0, row * places.constFirst().height(), viewport()->grab(places.at(row)));
    return picture;
}
