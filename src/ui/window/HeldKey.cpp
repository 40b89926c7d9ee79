#include "HeldKey.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>

HeldKey::HeldKey(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool HeldKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyRelease) {
        const auto *key = static_cast<QKeyEvent *>(event);
        m_releasedKey = key->key();
        m_releasedAt = key->timestamp();
    } else if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        m_isRepeated = key->key() == m_releasedKey && key->timestamp() == m_releasedAt && m_releasedAt != 0;
    } else if (event->type() == QEvent::Shortcut) {
        const auto *action = qobject_cast<QAction *>(watched);
        return action != nullptr && !action->autoRepeat() && m_isRepeated;
    }
    return QObject::eventFilter(watched, event);
}
