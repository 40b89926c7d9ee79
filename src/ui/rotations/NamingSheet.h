#pragma once

#include <QCoroTask>

#include <QDialog>

class ActionQueue;
class Alerts;
class QLineEdit;
class RotationStore;

/// The sheet that asks for a name that is not taken yet: of a new rotation, or to save the table under.
class NamingSheet : public QDialog
{
    Q_OBJECT
public:
    enum class Purpose { New, SaveAs };

    /// Everything handed in outlives the sheet.
    NamingSheet(Purpose purpose, RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent = nullptr);

    /// Does nothing while what the button started goes on.
    void reject() override;

private:
    void actionButtonPressed();
    QCoro::Task<> use(QString typed);

    const Purpose m_purpose;
    RotationStore &m_store;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    QLineEdit *nameField;
    bool m_isBusy = false;
};
