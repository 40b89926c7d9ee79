#pragma once

#include "ArrayController.h"

#include <QCoroTask>

#include <QDialog>

class ActionQueue;
class Alerts;
class KeyHandlingTableView;
class QPushButton;
class RotationStore;

/// A sheet with the names of all rotations of a kind, as they are when it is made. The store outlives it.
class RotationListSheet : public QDialog
{
    Q_OBJECT
protected:
    /// @param objectName  with the name of the kind as %1.
    RotationListSheet(RotationStore &store, const QString &objectName, const QString &buttonText, QWidget *parent);

    /// The names of the selected rows, from the top.
    QStringList selectedNames() const { return rotationArrayController.selectedObjects(); }

    RotationStore &m_store;
    ArrayController<QString> rotationArrayController;
    KeyHandlingTableView *tableView;
    QPushButton *m_actionButton;
};

/// The sheet that opens one of the rotations. The current one is selected at first, or the first where none is.
class OpenRotationSheet : public RotationListSheet
{
    Q_OBJECT
public:
    OpenRotationSheet(RotationStore &store, QWidget *parent = nullptr);

private:
    /// With an empty name the table of the rotation becomes empty and unnamed.
    void openAndClose(const QString &name);
};

/// The sheet that deletes some of the rotations. The button does so at once, the key asks first: unlike the button, it
/// is pressed by mistake.
class DeleteRotationSheet : public RotationListSheet
{
    Q_OBJECT
public:
    /// Everything handed in outlives the sheet.
    DeleteRotationSheet(RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent = nullptr);

private:
    void deleteSelected(bool isAskedFirst);
    QCoro::Task<> remove(QStringList names, bool isAskedFirst);
    QString question(const QStringList &names) const;

    ActionQueue &m_actions;
    Alerts &m_alerts;
    bool m_isBusy = false;
};
