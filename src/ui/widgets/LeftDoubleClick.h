#pragma once

#include <QObject>

class QAbstractItemView;
class QModelIndex;

/// Tells of the double clicks on a view that mean something: those with the left button, and of the row under the
/// pointer whatever is selected. A view's own signal comes for every button.
class LeftDoubleClick : public QObject
{
    Q_OBJECT
public:
    /// The view owns it.
    explicit LeftDoubleClick(QAbstractItemView *view);

    bool eventFilter(QObject *object, QEvent *event) override;

signals:
    /// @param index  of the view's model.
    void doubleClicked(const QModelIndex &index);

private:
    bool m_isLeft = false;
};
