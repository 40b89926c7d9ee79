#pragma once

class QKeySequence;
class QMenu;
class QPushButton;
class QString;

/// Repeats a button in a menu: grey in the open menu when it is grey in the window. The shortcut, which may be empty,
/// presses the button, which does nothing while it is grey.
void addButtonAction(QMenu &menu, const QString &text, const QKeySequence &keys, QPushButton *button);
