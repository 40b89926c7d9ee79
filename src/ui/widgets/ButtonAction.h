#pragma once

class QAction;
class QKeySequence;
class QMenu;
class QPushButton;
class QString;
class QWidget;

/// Repeats a button in a menu: grey when it is grey in the window. The shortcut, which may be empty, presses the button
/// once, however long it is held down.
/// @param place  the shortcut acts only while this widget has the focus; in the whole window if null.
/// @return the menu's entry, which the menu owns.
QAction *addButtonAction(QMenu &menu, const QString &text, const QKeySequence &keys, QPushButton *button,
                         QWidget *place = nullptr);

/// The entry of a page's "Refresh", with the platform's key. Several pages have one: see setActsInWindow().
QAction *addRefreshAction(QMenu &menu, QPushButton *button);

/// Whether the shortcut of an entry acts in the whole window; else the menu only shows it. Null is ignored.
void setActsInWindow(QAction *action, bool isActing);
