#pragma once

#include "RotationListDialog.h"

#include <QCoroTask>

class ActionQueue;
class Alerts;

/// The sheet that deletes some of the rotations.
class DeleteRotationWindowController : public RotationListDialog
{
    Q_OBJECT
public:
    /// Everything handed in outlives the sheet.
    DeleteRotationWindowController(RotationStore &store, const RotationLabels &labels, ActionQueue &actions,
                                   Alerts &alerts, QWidget *parent = nullptr);

public slots:
    void deletePressed();
    /// Asks first: unlike the button, a key is pressed by mistake.
    void deleteKeyPressed();

private:
    QCoro::Task<> removeAfterQuestion(QStringList names);
    QCoro::Task<> remove(QStringList names);

    ActionQueue &m_actions;
    Alerts &m_alerts;
    bool m_isBusy = false;
};
