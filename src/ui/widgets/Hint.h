#pragma once

#include <QAbstractItemModel>
#include <QLabel>
#include <QPointer>

class QAbstractItemView;

/// What to do, written over a table, a list or an outline for as long as it has no rows. A screen reader, for which the
/// rows are all that is inside of a view, says it with the name of the view.
class Hint : public QLabel
{
    Q_OBJECT
public:
    /// The hint belongs to `view`.
    explicit Hint(QAbstractItemView *view);

    /// Follows the rows of the model that the view has now; called by a view that gets another one.
    void followModel();
    void showText(const QString &text);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    void follow();

    QAbstractItemView *m_view;
    QPointer<const QAbstractItemModel> m_model;
};
