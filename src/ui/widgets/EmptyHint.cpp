#include "EmptyHint.h"

#include <QAbstractItemView>
#include <QEvent>

EmptyHint::EmptyHint(QAbstractItemView *view) : QLabel(view->viewport()), m_view(view)
{
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(12);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view->viewport()->installEventFilter(this);
    const QAbstractItemModel *model = view->model();
    connect(model, &QAbstractItemModel::modelReset, this, &EmptyHint::follow);
    connect(model, &QAbstractItemModel::rowsInserted, this, &EmptyHint::follow);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &EmptyHint::follow);
    follow();
}

void EmptyHint::follow()
{
    setGeometry(m_view->viewport()->rect());
    setVisible(m_view->model()->rowCount() == 0);
}

bool EmptyHint::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        follow();
    return QLabel::eventFilter(object, event);
}
