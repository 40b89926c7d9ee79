#include "RowDrag.h"

#include "ReorderableRows.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTableView>

#include <algorithm>
#include <chrono>

#ifdef Q_OS_MACOS
static constexpr Qt::KeyboardModifier copyModifier = Qt::AltModifier;
#else
static constexpr Qt::KeyboardModifier copyModifier = Qt::ControlModifier;
#endif

static constexpr int scrollMargin = 18; ///< pixels from an edge within which the table scrolls

RowDrag::RowDrag(QTableView *table) : QObject(table), m_table(table)
{
    m_scrollTimer.setInterval(std::chrono::milliseconds(30));
    connect(&m_scrollTimer, &QTimer::timeout, this, &RowDrag::scrollAtEdge);
}

RowDrag::~RowDrag()
{
    if (isDragging())
        QGuiApplication::restoreOverrideCursor();
}

void RowDrag::setRows(ReorderableRows *rows)
{
    cancel();
    m_rows = rows;
}

void RowDrag::arm(const QPoint &position)
{
    if (m_rows == nullptr || !m_rows->draggingEnabled())
        return;
    m_pressed = position;
    m_phase = Phase::Armed;
}

void RowDrag::move(const QMouseEvent *event)
{
    if ((event->buttons() & Qt::LeftButton) == 0) { // the release went elsewhere
        end(Phase::None);
        return;
    }
    m_position = event->position().toPoint();
    m_modifiers = event->modifiers();
    if (m_phase == Phase::Armed && (m_position - m_pressed).manhattanLength() >= QApplication::startDragDistance())
        begin();
    if (isDragging())
        follow();
}

void RowDrag::begin()
{
    m_dragged.clear();
    for (const QModelIndex &index : m_table->selectionModel()->selectedRows())
        m_dragged.append(index.row());
    if (m_dragged.isEmpty() || !m_rows->draggingEnabled()) {
        m_phase = Phase::Spent;
        return;
    }
    m_phase = Phase::Dragging;
    QGuiApplication::setOverrideCursor(Qt::DragMoveCursor);
    m_scrollTimer.start();
}

void RowDrag::release(const QMouseEvent *event)
{
    if (!isDragging()) {
        end(Phase::None);
        return;
    }
    m_position = event->position().toPoint();
    m_modifiers = event->modifiers();
    m_dropRow = rowAbove(m_position);
    const int row = m_dropRow;
    const QList<int> dragged = m_dragged;
    const bool isCopy = isCopyWanted();
    end(Phase::None); // first, or the rows that move would call it off
    if (row < 0 || !m_rows->draggingEnabled())
        return;
    if (m_rows->acceptDrop(dragged, row, true, isCopy))
        m_table->scrollTo(m_table->currentIndex());
}

void RowDrag::modifiersChanged(Qt::KeyboardModifiers modifiers)
{
    m_modifiers = modifiers;
    if (isDragging())
        showCursor();
}

void RowDrag::cancel()
{
    // Until the button is let go, its moves must not begin something else.
    if (isArmed())
        end(Phase::Spent);
}

void RowDrag::end(Phase next)
{
    const bool wasDragging = isDragging();
    m_phase = next;
    m_dropRow = -1;
    m_dragged.clear();
    m_scrollTimer.stop();
    if (!wasDragging)
        return;
    QGuiApplication::restoreOverrideCursor();
    m_table->viewport()->update();
}

void RowDrag::follow()
{
    m_dropRow = rowAbove(m_position);
    showCursor();
    m_table->viewport()->update();
}

void RowDrag::showCursor()
{
    Qt::CursorShape shape = Qt::ForbiddenCursor;
    if (m_dropRow >= 0) {
        const auto operation = m_rows->validateDrop(true, isCopyWanted());
        shape = operation == ReorderableRows::DropOperation::Copy ? Qt::DragCopyCursor : Qt::DragMoveCursor;
    }
    if (QGuiApplication::overrideCursor() != nullptr && QGuiApplication::overrideCursor()->shape() != shape)
        QGuiApplication::changeOverrideCursor(shape);
}

bool RowDrag::isCopyWanted() const
{
    return (m_modifiers & copyModifier) != 0;
}

int RowDrag::rowAbove(const QPoint &position) const
{
    if (!m_table->viewport()->rect().contains(position))
        return -1;
    const int row = m_table->rowAt(position.y());
    if (row < 0)
        return m_rows->arrangedCount();
    const int middle = m_table->rowViewportPosition(row) + m_table->rowHeight(row) / 2;
    return position.y() < middle ? row : row + 1;
}

void RowDrag::scrollAtEdge()
{
    if (m_dropRow < 0)
        return;
    const int height = m_table->viewport()->height();
    const int above = std::max(scrollMargin - m_position.y(), 0);
    const int below = std::max(m_position.y() - (height - scrollMargin), 0);
    if (above == below) // in the middle, or too low a table to tell
        return;
    QScrollBar *bar = m_table->verticalScrollBar();
    const int before = bar->value();
    bar->setValue(before + below - above); // the nearer to the edge the faster
    if (bar->value() != before)
        follow();
}

void RowDrag::paint(QPainter &painter) const
{
    if (!isDragging() || m_dropRow < 0)
        return;
    const int count = m_rows->arrangedCount();
    const int last = count - 1;
    int y = m_dropRow < count ? m_table->rowViewportPosition(m_dropRow)
                              : m_table->rowViewportPosition(last) + m_table->rowHeight(last);
    constexpr int radius = 3;
    y = std::clamp(y, radius + 1, m_table->viewport()->height() - radius - 1);
    painter.setRenderHint(QPainter::Antialiasing);
    // The text's colour shows on plain, striped and selected rows alike.
    painter.setPen(QPen(m_table->palette().color(QPalette::WindowText), 2));
    painter.drawEllipse(QPoint(radius + 2, y), radius, radius);
    painter.drawLine(2 * radius + 2, y, m_table->viewport()->width() - 3, y);
}
