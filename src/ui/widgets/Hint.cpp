#include "Hint.h"

#include <QAbstractItemView>
#include <QEvent>

Hint::Hint(QAbstractItemView *view) : QLabel(view->viewport()), m_view(view)
{
    setObjectName(QStringLiteral("hint"));
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setMargin(12);
    setForegroundRole(QPalette::PlaceholderText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    view->viewport()->installEventFilter(this);
    followModel();
}

void Hint::followModel()
{
    m_model = m_view->model();
    if (m_model != nullptr) {
        connect(m_model, &QAbstractItemModel::modelReset, this, &Hint::follow);
        connect(m_model, &QAbstractItemModel::rowsInserted, this, &Hint::follow);
        connect(m_model, &QAbstractItemModel::rowsRemoved, this, &Hint::follow);
    }
    follow();
}

void Hint::showText(const QString &text)
{
    setText(text);
    follow();
}

void Hint::follow()
{
    const bool isShown = m_model != nullptr && m_model->rowCount() == 0;
    setGeometry(m_view->viewport()->rect());
    setVisible(isShown);
    const QString told = isShown ? text() : QString();
    if (m_view->accessibleDescription() != told)
        m_view->setAccessibleDescription(told);
}

bool Hint::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        setGeometry(m_view->viewport()->rect());
    return QLabel::eventFilter(object, event);
}

void Hint::moveEvent(QMoveEvent *event)
{
    QLabel::moveEvent(event);
    move(0, 0); // a view that scrolls takes along what stands on it
}
