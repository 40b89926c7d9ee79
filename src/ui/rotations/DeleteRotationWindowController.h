#pragma once

#include "RotationListDialog.h"

#include <QCoroTask>

class ActionQueue;

/// The sheet that deletes some of the rotations.
class DeleteRotationWindowController : public RotationListDialog
{
    Q_OBJECT
public:
    /// Everything handed in outlives the sheet.
    DeleteRotationWindowController(RotationStore &store, const RotationLabels &labels, ActionQueue &actions,
                                   QWidget *parent = nullptr);

public slots:
    void deletePressed();

private:
    QCoro::Task<> remove(QStringList names);

    ActionQueue &m_actions;
    bool m_isBusy = false;
};
