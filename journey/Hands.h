#pragma once

#include <QString>

class QAbstractItemView;
class QComboBox;
class QLineEdit;
class QModelIndex;
class QTabWidget;
class QWidget;

/// What a person does to a window: mouse and keys, and nothing else. What cannot be done so, such as a press on a
/// disabled button, has no effect.
namespace Hands
{
void click(QWidget *widget);
/// Finds the button inside `root` by its object name; so do those below for a field and a pop-up.
void click(const QWidget &root, const char *button);
/// Clicks on a cell; brings it into view first.
void click(QAbstractItemView &view, const QModelIndex &cell, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
/// The same on the cell of the first column that shows `text`.
void click(const QWidget &root, const char *view, const QString &text,
           Qt::KeyboardModifiers modifiers = Qt::NoModifier);
void doubleClick(QAbstractItemView &view, const QModelIndex &cell);
void showTab(QTabWidget &tabs, QWidget *page);
/// Types over what stands in the field.
void type(QLineEdit *field, const QString &text);
void type(const QWidget &root, const char *field, const QString &text);
/// Types a server on this computer, with the password "demo", into the form.
void fillForm(const QWidget &root, const QString &label, quint16 port);
/// Types it and presses Return.
void enter(QLineEdit *field, const QString &text);
/// In a file panel that is open.
void chooseFile(const QWidget &panel, const QString &path);
/// Goes with the arrow keys to the item with this title.
void choose(QComboBox *popup, const QString &title);
void choose(const QWidget &root, const char *popup, const QString &title);

/// @return the cell of the first column that shows `text`; invalid when none does. Branches of a tree are searched too.
QModelIndex find(const QAbstractItemView &view, const QString &text);
} // namespace Hands
