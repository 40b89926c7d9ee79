#pragma once

#include "RotationListDialog.h"

/// The sheet that opens one of the rotations. The current one is selected at first, or the first where none is.
class OpenRotationWindowController : public RotationListDialog
{
    Q_OBJECT
public:
    /// The store outlives the sheet.
    OpenRotationWindowController(RotationStore &store, const RotationLabels &labels, QWidget *parent = nullptr);

public slots:
    /// Opens the selected rotation; with none selected the table of the rotation becomes empty and unnamed.
    void openPressed();

private:
    void openAndClose(const QString &name);
};
