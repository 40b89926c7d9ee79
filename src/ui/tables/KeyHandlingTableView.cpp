#include "KeyHandlingTableView.h"

#include "OneLineDelegate.h"
#include "ReorderableRows.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

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

KeyHandlingTableView::KeyHandlingTableView(QWidget *parent) : PlaceholderTable(parent), m_drag(this)
{
    setItemDelegate(new OneLineDelegate(this));
    setEditTriggers(QAbstractItemView::DoubleClicked);
    setDragDropMode(QAbstractItemView::NoDragDrop);
    setAcceptDrops(false);
    viewport()->setAcceptDrops(false);
}

void KeyHandlingTableView::setModel(QAbstractItemModel *model)
{
    if (this->model() != nullptr)
        disconnect(this->model(), nullptr, &m_drag, nullptr);
    m_drag.cancel();
    PlaceholderTable::setModel(model);
    if (model == nullptr)
        return;
    // A drag knows its rows by their numbers.
    connect(model, &QAbstractItemModel::rowsAboutToBeInserted, &m_drag, &RowDrag::cancel);
    connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, &m_drag, &RowDrag::cancel);
    connect(model, &QAbstractItemModel::rowsAboutToBeMoved, &m_drag, &RowDrag::cancel);
    connect(model, &QAbstractItemModel::layoutAboutToBeChanged, &m_drag, &RowDrag::cancel);
    connect(model, &QAbstractItemModel::modelAboutToBeReset, &m_drag, &RowDrag::cancel);
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
    const ReorderableRows *rows = m_drag.rows();
    const bool isAskedOfRows = rows != nullptr && rows->hasKeyHandlingDelegate();
    if (!isAskedOfRows && !m_deleteSelection)
        return false;
    if (selectionModel() == nullptr || !selectionModel()->hasSelection())
        beep();
    else if (isAskedOfRows)
        m_drag.rows()->deleteSelectionFromTableView();
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
    ReorderableRows *rows = m_drag.rows();
    if (rows == nullptr || !rows->draggingEnabled() || selectionModel() == nullptr)
        return;
    QList<int> selected;
    for (const QModelIndex &index : selectionModel()->selectedRows())
        selected.append(index.row());
    if (selected.isEmpty())
        return;
    const auto [first, last] = std::minmax_element(selected.constBegin(), selected.constEnd());
    const int target = step < 0 ? *first - 1 : *last + 2; // before the row above, or behind the one below
    if (target < 0 || target > rows->arrangedCount())
        return;
    if (rows->acceptDrop(selected, target, true, false))
        scrollTo(currentIndex());
}

void KeyHandlingTableView::finishEditing()
{
    if (state() == QAbstractItemView::EditingState)
        setFocus(); // which the editor loses
}

bool KeyHandlingTableView::isOwnKey(const QKeyEvent *event) const
{
    if (m_drag.isDragging())
        return true;
    return isStepKey(event) || event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Paste) ||
           (event->modifiers() == Qt::NoModifier && (isReturn(event->key()) || isDelete(event->key())));
}

bool KeyHandlingTableView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && isOwnKey(static_cast<QKeyEvent *>(event))) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::WindowDeactivate || event->type() == QEvent::WindowBlocked ||
        (event->type() == QEvent::EnabledChange && !isEnabled()))
        m_drag.cancel();
    return PlaceholderTable::event(event);
}

void KeyHandlingTableView::keyPressEvent(QKeyEvent *event)
{
    if (m_drag.isDragging()) {
        m_drag.modifiersChanged(event->modifiers());
        if (event->key() == Qt::Key_Escape)
            m_drag.cancel();
        event->accept(); // nothing else may happen to rows that are under way
        return;
    }
    const bool isTyping = state() == QAbstractItemView::EditingState && !hasFocus(); // the editor passed the key on
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
        // The first arrow key says where it starts from, else the only row of a table could not be reached.
        selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        return true;
    }
    return false;
}

void KeyHandlingTableView::keyReleaseEvent(QKeyEvent *event)
{
    if (m_drag.isDragging())
        m_drag.modifiersChanged(event->modifiers());
    PlaceholderTable::keyReleaseEvent(event);
}

void KeyHandlingTableView::paste()
{
    const QString text = QGuiApplication::clipboard()->text();
    if (!text.isEmpty())
        emit pasteRequested(text);
}

QItemSelectionModel::SelectionFlags KeyHandlingTableView::selectionCommand(const QModelIndex &index,
                                                                           const QEvent *event) const
{
    if (!m_isChoiceDeferred || event == nullptr)
        return PlaceholderTable::selectionCommand(index, event);
    if (event->type() == QEvent::MouseButtonPress)
        return QItemSelectionModel::NoUpdate;
    if (event->type() == QEvent::MouseButtonRelease) {
        const bool isToggled = (static_cast<const QMouseEvent *>(event)->modifiers() & Qt::ControlModifier) != 0;
        return QItemSelectionModel::Rows |
               (isToggled ? QItemSelectionModel::Toggle : QItemSelectionModel::ClearAndSelect);
    }
    return PlaceholderTable::selectionCommand(index, event);
}

void KeyHandlingTableView::mousePressEvent(QMouseEvent *event)
{
    if (m_drag.isArmed()) { // another button in the middle of a drag
        if (event->button() != Qt::LeftButton)
            return;
        m_drag.cancel(); // the release of the former press went elsewhere
    }
    const QModelIndex pressed = indexAt(event->position().toPoint());
    const bool isDraggable = event->button() == Qt::LeftButton && pressed.isValid() && m_drag.rows() != nullptr &&
                             m_drag.rows()->draggingEnabled();
    m_isChoiceDeferred = isDraggable && (event->modifiers() & Qt::ShiftModifier) == 0 &&
                         selectionModel()->isRowSelected(pressed.row(), {});
    PlaceholderTable::mousePressEvent(event);
    if (isDraggable && state() != QAbstractItemView::EditingState && pressed.row() < model()->rowCount() &&
        selectionModel()->isRowSelected(pressed.row(), {}))
        m_drag.arm(event->position().toPoint());
}

void KeyHandlingTableView::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_drag.isArmed())
        PlaceholderTable::mouseMoveEvent(event);
    else
        m_drag.move(event);
}

void KeyHandlingTableView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_drag.isArmed() && event->button() != Qt::LeftButton)
        return;
    const bool isClick = !m_drag.isBegun();
    if (m_drag.isArmed())
        m_drag.release(event);
    if (isClick)
        PlaceholderTable::mouseReleaseEvent(event);
    m_isChoiceDeferred = false;
}

void KeyHandlingTableView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!m_drag.isDragging()) // where the mouse is counts, not the row that was pressed
        PlaceholderTable::scrollTo(index, hint);
}

void KeyHandlingTableView::focusOutEvent(QFocusEvent *event)
{
    m_drag.cancel();
    PlaceholderTable::focusOutEvent(event);
}

void KeyHandlingTableView::hideEvent(QHideEvent *event)
{
    m_drag.cancel();
    PlaceholderTable::hideEvent(event);
}

bool KeyHandlingTableView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::UngrabMouse)
        m_drag.cancel();
    if (event->type() == QEvent::ToolTip && showToolTip(static_cast<QHelpEvent *>(event)))
        return true;
    return PlaceholderTable::viewportEvent(event);
}

bool KeyHandlingTableView::showToolTip(const QHelpEvent *event)
{
    const QModelIndex cell = indexAt(event->pos());
    const QString text = cell.data().toString();
    if (text.size() <= OneLineDelegate::LongestShown && sizeHintForIndex(cell).width() <= columnWidth(cell.column()) &&
        !text.contains(QLatin1Char('\n')))
        return false;
    // Escaped, or a text with brackets would be taken for rich text.
    const QString shown =
        text.left(4 * OneLineDelegate::LongestShown).toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>"));
    QToolTip::showText(event->globalPos(), QStringLiteral("<span>%1</span>").arg(shown), viewport());
    return true;
}

void KeyHandlingTableView::paintEvent(QPaintEvent *event)
{
    PlaceholderTable::paintEvent(event);
    if (!m_drag.isDragging())
        return;
    QPainter painter(viewport());
    m_drag.paint(painter);
}
