#pragma once

#include "ArrayController.h"
#include "RotationLabels.h"

#include <QDialog>
#include <QPushButton>

class KeyHandlingTableView;
class RotationStore;

/// A row of the dialogs that list the rotations.
struct RotationName {
    QString name;
    bool operator==(const RotationName &) const = default;
};

/// A sheet with the names of all rotations of a kind, filled when it is made. The store outlives it.
class RotationListDialog : public QDialog
{
    Q_OBJECT
public slots:
    void updateTable();
    void closePressed() { done(QDialog::Rejected); }

protected:
    RotationListDialog(RotationStore &store, QPushButton *actionButton, QWidget *parent);

    KeyHandlingTableView *table() const { return tableView; }
    QPushButton *actionButton() const { return m_actionButton; }
    /// The names of the selected rows, from the top.
    QStringList selectedNames() const;

    RotationStore &m_store;

private:
    ArrayController<RotationName> *rotationArrayController;
    KeyHandlingTableView *tableView;
    QPushButton *m_actionButton;
};
