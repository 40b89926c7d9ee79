#pragma once

#include "RotationListDialog.h"

/// The sheet that opens one of the rotations.
class OpenRotationWindowController : public RotationListDialog
{
    Q_OBJECT
public:
    /// The store outlives the sheet.
    OpenRotationWindowController(RotationStore &store, const RotationLabels &labels, QWidget *parent = nullptr);

public slots:
    /// Opens the selected rotation; with none selected the table of the rotation becomes empty and unnamed.
    void openPressed();
};
