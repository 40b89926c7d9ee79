#pragma once

#include "RotationNameDialog.h"

/// The sheet that saves the table under a name that is not taken yet.
class SaveRotationAsWindowController : public RotationNameDialog
{
    Q_OBJECT
public:
    /// Everything handed in outlives the sheet.
    SaveRotationAsWindowController(RotationStore &store, const RotationLabels &labels, ActionQueue &actions,
                                   Alerts &alerts, QWidget *parent = nullptr);

    /// The name as it was typed; empty after "Cancel".
    QString rotationName() const { return typedName(); }

public slots:
    void saveButtonPressed();
    void cancelButtonPressed() override;

private:
    QCoro::Task<> save(QString name);
};
