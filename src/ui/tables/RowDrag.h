#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>

class QMouseEvent;
class QPainter;
class QTableView;
class ReorderableRows;

/// Rows under way with the mouse inside their own table, from the press to the drop. It runs on the table's mouse
/// events alone: the window lives on, and nothing can arrive from elsewhere. Main thread only.
class RowDrag : public QObject
{
    Q_OBJECT
public:
    /// Belongs to `table`, which hands its mouse events in.
    explicit RowDrag(QTableView *table);
    ~RowDrag() override;

    /// The rows to drag; null for none. They outlive the table.
    void setRows(ReorderableRows *rows);
    ReorderableRows *rows() const { return m_rows; }

    /// A press at `position` of the viewport may become a drag of the rows that are selected now.
    void arm(const QPoint &position);
    /// The mouse is held after a press that may become, is or was a drag: its moves mean nothing else.
    bool isArmed() const { return m_phase != Phase::None; }
    /// The distance was passed: the release is no click.
    bool isBegun() const { return m_phase == Phase::Dragging || m_phase == Phase::Spent; }
    bool isDragging() const { return m_phase == Phase::Dragging; }

    void move(const QMouseEvent *event);
    /// Drops what is dragged; elsewhere than in the table nothing happens.
    void release(const QMouseEvent *event);
    /// Ctrl, or Alt on macOS, went down or up while the mouse rests.
    void modifiersChanged(Qt::KeyboardModifiers modifiers);
    /// The row before which the drop would fall; -1 for nowhere.
    int dropRow() const { return m_dropRow; }
    void paint(QPainter &painter) const;

public slots:
    /// Ends the drag with nothing changed.
    void cancel();

private:
    enum class Phase { None, Armed, Dragging, Spent };

    void begin();
    void end(Phase next);
    void follow();
    void showCursor();
    void scrollAtEdge();
    int rowAbove(const QPoint &position) const;
    bool isCopyWanted() const;

    QTableView *m_table;
    ReorderableRows *m_rows = nullptr;
    QTimer m_scrollTimer;
    QPoint m_pressed;
    QPoint m_position;
    Qt::KeyboardModifiers m_modifiers;
    QList<int> m_dragged;
    int m_dropRow = -1;
    Phase m_phase = Phase::None;
};
