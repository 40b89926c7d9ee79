#pragma once

#include <QLabel>

class QAbstractItemView;

/// What to do, written over a list or an outline for as long as it has no rows.
class EmptyHint : public QLabel
{
    Q_OBJECT
public:
    /// The hint belongs to `view`, which has its model already.
    explicit EmptyHint(QAbstractItemView *view);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void follow();

    QAbstractItemView *m_view;
};
