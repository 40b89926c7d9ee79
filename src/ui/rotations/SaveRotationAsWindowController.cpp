#include "SaveRotationAsWindowController.h"

#include "ActionQueue.h"
#include "RotationStore.h"

#include <QPointer>

SaveRotationAsWindowController::SaveRotationAsWindowController(RotationStore &store, const RotationLabels &labels,
                                                               ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : RotationNameDialog(store, labels, actions, alerts, new QPushButton(tr("Save")), parent)
{
    QPushButton *saveButton = actionButton();
    setObjectName(QStringLiteral("Save%1AsWindowController").arg(labels.kind));
    setWindowTitle(labels.saveAsTitle);
    saveButton->setObjectName(QStringLiteral("saveButton"));
    connect(saveButton, &QPushButton::clicked, this, &SaveRotationAsWindowController::saveButtonPressed);
}

void SaveRotationAsWindowController::saveButtonPressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(save(rotationName()));
}

void SaveRotationAsWindowController::cancelButtonPressed()
{
    if (m_isBusy)
        return;
    clearName(); // an empty name tells the caller that nothing was saved
    RotationNameDialog::cancelButtonPressed();
}

QCoro::Task<> SaveRotationAsWindowController::save(QString name)
{
    const QPointer<SaveRotationAsWindowController> self(this);
    // The name is looked up without the blanks around it, and saved with them.
    const bool isRefused = co_await refuseExisting(name.trimmed());
    if (!self)
        co_return;
    if (!isRefused && !name.isEmpty()) {
        // A file that could not be written has been reported; the sheet has nothing to add.
        [[maybe_unused]] const bool isWritten = co_await m_store.saveUIChanges(name);
    }
    if (!self)
        co_return;
    m_isBusy = false;
    if (isRefused)
        askAgain();
    else
        done(QDialog::Accepted);
}
