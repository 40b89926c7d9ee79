#include "LeftDoubleClick.h"

#include <QAbstractItemView>
#include <QMouseEvent>

LeftDoubleClick::LeftDoubleClick(QAbstractItemView *view) : QObject(view)
{
    view->viewport()->installEventFilter(this);
    // Only the view knows whether both clicks fell on the same row.
    connect(view, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex &index) {
        if (m_isLeft)
            emit doubleClicked(index);
    });
}

bool LeftDoubleClick::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonDblClick)
        m_isLeft = static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton;
    return QObject::eventFilter(object, event);
}
