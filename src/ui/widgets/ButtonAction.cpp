#include "ButtonAction.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QPushButton>

void addButtonAction(QMenu &menu, const QString &text, const QKeySequence &keys, QPushButton *button)
{
    QAction *action = menu.addAction(text, keys, button, &QPushButton::click);
    QObject::connect(&menu, &QMenu::aboutToShow, action, [action, button] { action->setEnabled(button->isEnabled()); });
    // A disabled action would keep its shortcut from the button when that can be pressed again.
    QObject::connect(&menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
}
