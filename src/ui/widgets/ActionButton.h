#pragma once

#include <QAction>
#include <QPointer>
#include <QPushButton>

/// An action that a page owns, for a menu, a button and a key. A key that is held down acts once.
/// @param text  of the menu's entry, with its mnemonic. A button shows the action's icon text, which is the same
/// without the mnemonic unless another is set.
QAction *makeAction(QObject *owner, const QString &text, const QKeySequence &key = {});

/// @param operation  what the action does: a function or a signal of its owner.
template <typename Owner>
QAction *makeAction(Owner *owner, const QString &text, void (Owner::*operation)(), const QKeySequence &key = {})
{
    QAction *action = makeAction(static_cast<QObject *>(owner), text, key);
    QObject::connect(action, &QAction::triggered, owner, operation);
    return action;
}

/// The button of an action: has its text and its tooltip, is grey when it is grey, and triggers it.
class ActionButton : public QPushButton
{
    Q_OBJECT
public:
    /// @param action  outlives the button.
    ActionButton(QAction *action, const char *objectName, QWidget *parent);

    /// Who gets the focus when the button turns grey while it has it; the next control if nobody is named.
    void setSuccessor(QWidget *successor) { m_successor = successor; }

private:
    void follow();

    QAction *m_action;
    QPointer<QWidget> m_successor;
};
