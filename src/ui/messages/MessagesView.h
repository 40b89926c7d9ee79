#pragma once

#include "TabPage.h"

#include <QPointer>
#include <QTimer>

class ActionQueue;
class AddMessageToRotationWindowController;
class Alerts;
class ColorPreview;
class KelMessageRotation;
class OnAirDelegate;
class Preferences;
class QAction;
class QLabel;
class QLayout;
class QuickMessageField;
class RotationPane;
class UnsendableLabel;

/// The rotation of chat messages with what plays it, and the message that is sent at once.
class MessagesView : public TabPage
{
    Q_OBJECT
public:
    /// Everything handed in outlives the view.
    MessagesView(KelMessageRotation &messages, ActionQueue &actions, Alerts &alerts, Preferences &preferences,
                 QWidget *parent = nullptr);

    void fillMenu(QMenu &menu) override;
    PageDocument *document() override;

public slots:
    void addMessageToRotationMenuItemClicked();
    void startMessageRotationButtonPressed();
    void stopMessageRotationButtonPressed();
    void quickMessageButtonPressed();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    /// What plays the rotation, and what it is at.
    QLayout *makeTransport(Preferences &preferences);
    QLayout *makeQuickMessage();
    void connectMessages();
    void quickMessageDidChange();
    void updateTransport();
    void updateOnAir();
    QString onAirText() const;

    QAction *m_addAction;
    QAction *m_startAction;
    QAction *m_stopAction;
    RotationPane *rotationPane;
    QLabel *onAirLabel = nullptr;
    QuickMessageField *quickMessageTextField = nullptr;
    UnsendableLabel *unsendableLabel = nullptr;
    ColorPreview *colorPreview = nullptr;
    /// The Add Message sheet while it is open.
    QPointer<AddMessageToRotationWindowController> addMessageToRotationWindowController;

    KelMessageRotation &m_messages;
    ActionQueue &m_actions;
    OnAirDelegate *m_onAirDelegate;
    QTimer m_secondTimer; ///< counts the remaining seconds down while they can be seen
};
