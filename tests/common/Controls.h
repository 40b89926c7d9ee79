#pragma once

#include <QString>
#include <QWidget>

/// The control inside `root` that is called `name`, as who looks for it in the window finds it. Without one the test
/// cannot go on and ends.
template <typename Control>
Control *control(const QWidget &root, const char *name)
{
    auto *found = root.findChild<Control *>(QString::fromLatin1(name));
    if (found == nullptr)
        qFatal("There is no %s called \"%s\" in the %s.", Control::staticMetaObject.className(), name,
               root.metaObject()->className());
    return found;
}
