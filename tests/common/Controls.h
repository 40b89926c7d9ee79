#pragma once

#include <QAbstractItemView>
#include <QString>
#include <QStringList>
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

/// What the first column of a list or table shows, from its top to its bottom. Branches of a tree are left out.
inline QStringList shownTexts(const QAbstractItemView &view)
{
    const QAbstractItemModel &model = *view.model();
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts.append(model.index(row, 0).data().toString());
    return texts;
}

/// What the cells of a row show, from its first column on.
inline QStringList shownRow(const QAbstractItemView &view, int row)
{
    const QAbstractItemModel &model = *view.model();
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column)
        texts.append(model.index(row, column).data().toString());
    return texts;
}

/// The same of every row, from the top to the bottom.
inline QList<QStringList> shownRows(const QAbstractItemView &view)
{
    QList<QStringList> rows;
    for (int row = 0; row < view.model()->rowCount(); ++row)
        rows.append(shownRow(view, row));
    return rows;
}
