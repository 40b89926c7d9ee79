#include "NewRotationWindowController.h"

#include "ActionQueue.h"
#include "RotationStore.h"

#include <QPointer>

NewRotationWindowController::NewRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                         ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : RotationNameDialog(store, labels, actions, alerts, new QPushButton(tr("Add")), parent)
{
    QPushButton *addButton = actionButton();
    setObjectName(QStringLiteral("New%1WindowController").arg(labels.kind));
    setWindowTitle(labels.newTitle);
    addButton->setObjectName(QStringLiteral("addButton"));
    connect(addButton, &QPushButton::clicked, this, &NewRotationWindowController::addButtonPressed);
}

void NewRotationWindowController::addButtonPressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(add(typedName().trimmed()));
}

QCoro::Task<> NewRotationWindowController::add(QString name)
{
    const QPointer<NewRotationWindowController> self(this);
    const bool isRefused = co_await refuseExisting(name);
    if (!self)
        co_return;
    if (!isRefused)
        co_await m_store.newRotationNamed(name);
    if (!self)
        co_return;
    m_isBusy = false;
    if (isRefused)
        askAgain();
    else
        done(QDialog::Accepted);
}
