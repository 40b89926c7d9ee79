#include "ActionButton.h"

QAction *makeAction(QObject *owner, const QString &text, const QKeySequence &key)
{
    auto *action = new QAction(text, owner);
    action->setAutoRepeat(false);
    action->setShortcut(key);
    return action;
}

ActionButton::ActionButton(QAction *action, const char *objectName, QWidget *parent)
    : QPushButton(action->iconText(), parent), m_action(action)
{
    setObjectName(QLatin1String(objectName));
    const QString itsText = action->text().remove(QLatin1Char('&'));
    if (action->toolTip() != itsText) // which an action without a tooltip returns
        setToolTip(action->toolTip());
    connect(this, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::enabledChanged, this, &ActionButton::follow);
    follow();
}

void ActionButton::follow()
{
    if (!m_action->isEnabled() && hasFocus() && m_successor != nullptr)
        m_successor->setFocus();
    setEnabled(m_action->isEnabled());
}
