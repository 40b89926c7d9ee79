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
class QCheckBox;
class QLabel;
class QPushButton;
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
    void restoreLayout(const Preferences &preferences) override;
    void saveLayout(Preferences &preferences) const override;

public slots:
    void addMessageToRotationMenuItemClicked();
    void startMessageRotationButtonPressed();
    void stopMessageRotationButtonPressed();
    void quickMessageButtonPressed();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void nameControls();
    void layOut();
    void connectControls();
    void quickMessageDidChange();
    void updateTransport();
    void updateOnAir();
    QString onAirText() const;

    RotationPane *rotationPane;
    QPushButton *addMessageButton;
    QPushButton *buttonStartMessageRotation;
    QPushButton *buttonStopMessageRotation;
    QCheckBox *checkBoxLoopMessages;
    QLabel *onAirLabel;
    QuickMessageField *quickMessageTextField;
    QPushButton *colorButton;
    QPushButton *quickMessageButton;
    ColorPreview *colorPreview;
    UnsendableLabel *unsendableLabel;
    /// The Add Message sheet while it is open.
    QPointer<AddMessageToRotationWindowController> addMessageToRotationWindowController;

    KelMessageRotation &m_messages;
    ActionQueue &m_actions;
    Preferences &m_preferences;
    OnAirDelegate *m_onAirDelegate;
    QMenu *m_colorMenu;
    QTimer m_secondTimer; ///< counts the remaining seconds down while they can be seen
};
