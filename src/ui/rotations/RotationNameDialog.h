#pragma once

#include "RotationLabels.h"

#include <QCoroTask>

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>

class ActionQueue;
class Alerts;
class RotationStore;

/// A sheet that asks for the name of a rotation. Everything handed in outlives it.
class RotationNameDialog : public QDialog
{
    Q_OBJECT
public slots:
    void controlTextDidChange();
    virtual void cancelButtonPressed();
    void reject() override { cancelButtonPressed(); }

protected:
    RotationNameDialog(RotationStore &store, RotationLabels labels, ActionQueue &actions, Alerts &alerts,
                       QPushButton *actionButton, QWidget *parent);

    QPushButton *actionButton() const { return m_actionButton; }
    /// The name as it was typed.
    QString typedName() const { return nameField->text(); }
    void clearName() { nameField->clear(); }
    /// The name was refused: the next one can be typed.
    void askAgain() { nameField->setFocus(); }
    /// Tells that there is a rotation of this name. @return whether there is one. The dialog may be gone afterwards.
    QCoro::Task<bool> refuseExisting(QString name);
    /// What a button started and has not ended yet: nothing else may start or close the sheet.
    bool m_isBusy = false;

    RotationStore &m_store;
    const RotationLabels m_labels;
    ActionQueue &m_actions;
    Alerts &m_alerts;

private:
    QLineEdit *nameField;
    QPushButton *m_actionButton;
};
