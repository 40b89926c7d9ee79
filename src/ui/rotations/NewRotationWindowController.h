#pragma once

#include "RotationNameDialog.h"

/// The sheet that makes a new rotation.
class NewRotationWindowController : public RotationNameDialog
{
    Q_OBJECT
public:
    /// Everything handed in outlives the sheet.
    NewRotationWindowController(RotationStore &store, const RotationLabels &labels, ActionQueue &actions,
                                Alerts &alerts, QWidget *parent = nullptr);

public slots:
    void addButtonPressed();

private:
    QCoro::Task<> add(QString name);
};
