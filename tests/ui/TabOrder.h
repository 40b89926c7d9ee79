#pragma once

#include <QStringList>
#include <QTest>
#include <QWidget>

/// What the Tab key goes through, from what has the focus inside `page` as far as `last`.
inline QStringList tabOrder(const QWidget &page, const QString &last)
{
    QStringList order{page.focusWidget()->objectName()};
    while (order.last() != last && order.size() < 30) {
        QTest::keyClick(page.focusWidget(), Qt::Key_Tab);
        order.append(page.focusWidget()->objectName());
    }
    return order;
}
