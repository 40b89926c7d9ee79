#pragma once

#include <QAbstractItemView>
#include <QTest>

/// Double-clicks as the desktop tells of it: a click, and in the place of the second press a double click.
/// @param place  in the viewport.
inline void doubleClick(const QAbstractItemView &view, const QPoint &place, Qt::MouseButton button = Qt::LeftButton,
                        Qt::KeyboardModifiers keys = {})
{
    QTest::mouseClick(view.viewport(), button, keys, place);
    QTest::mouseDClick(view.viewport(), button, keys, place);
}
