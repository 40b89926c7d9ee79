#include "ButtonAction.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QKeySequence>
#include <QMenu>
#include <QPushButton>

namespace
{

/// The entry of a menu that presses a button, and can be chosen whenever the button can be pressed.
class ButtonAction final : public QAction
{
public:
    ButtonAction(const QString &text, QPushButton *button, QMenu *menu) : QAction(text, menu), m_button(button)
    {
        connect(this, &QAction::triggered, button, &QPushButton::click);
        setEnabled(button->isEnabled());
        button->installEventFilter(this);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::EnabledChange)
            setEnabled(m_button->isEnabled());
        return QAction::eventFilter(watched, event);
    }

private:
    QPushButton *m_button;
};

} // namespace

QAction *addButtonAction(QMenu &menu, const QString &text, const QKeySequence &keys, QPushButton *button,
                         QWidget *place)
{
    auto *action = new ButtonAction(text, button, &menu);
    action->setAutoRepeat(false);
    action->setShortcut(keys);
    menu.addAction(action);
    if (place != nullptr) {
        action->setShortcutContext(Qt::WidgetShortcut);
        place->addAction(action);
    }
    return action;
}

QAction *addRefreshAction(QMenu &menu, QPushButton *button)
{
    QAction *action =
        addButtonAction(menu, QCoreApplication::translate("ButtonAction", "&Refresh"), QKeySequence::Refresh, button);
    setActsInWindow(action, false);
    return action;
}

void setActsInWindow(QAction *action, bool isActing)
{
    if (action != nullptr)
        action->setShortcutContext(isActing ? Qt::WindowShortcut : Qt::WidgetShortcut);
}
