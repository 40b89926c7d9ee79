#include "DeleteRotationWindowController.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KeyHandlingTableView.h"
#include "RotationStore.h"

#include <QPointer>

DeleteRotationWindowController::DeleteRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                               ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : RotationListDialog(store, new QPushButton(tr("Delete")), parent), m_actions(actions), m_alerts(alerts)
{
    QPushButton *deleteButton = actionButton();
    setObjectName(QStringLiteral("Delete%1WindowController").arg(labels.kind));
    setWindowTitle(labels.deleteTitle);
    deleteButton->setObjectName(QStringLiteral("deleteButton"));
    deleteButton->setAutoDefault(false); // deleting cannot be undone, so Return must not press it
    deleteButton->setEnabled(false);
    table()->setDeleteHandler([this] { deleteKeyPressed(); });
    connect(deleteButton, &QPushButton::clicked, this, &DeleteRotationWindowController::deletePressed);
    connect(table()->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this, deleteButton] { deleteButton->setEnabled(!selectedNames().isEmpty()); });
}

void DeleteRotationWindowController::deletePressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(remove(selectedNames()));
}

void DeleteRotationWindowController::deleteKeyPressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(removeAfterQuestion(selectedNames()));
}

QCoro::Task<> DeleteRotationWindowController::removeAfterQuestion(QStringList names)
{
    const QPointer<DeleteRotationWindowController> self(this);
    const QString text =
        names.size() == 1
            ? tr("The rotation \"%1\" will be deleted. This cannot be undone.").arg(names.constFirst())
            : tr("%n rotations will be deleted. This cannot be undone.", nullptr, static_cast<int>(names.size()));
    const QStringList buttons{tr("Delete"), tr("Cancel")};
    const AlertManner manner{1};
    const int pressed = co_await m_alerts.run(windowTitle(), text, buttons, manner);
    if (!self)
        co_return;
    m_isBusy = pressed == 0;
    if (m_isBusy)
        co_await remove(names);
}

QCoro::Task<> DeleteRotationWindowController::remove(QStringList names)
{
    const QPointer<DeleteRotationWindowController> self(this);
    RotationStore &store = m_store; // the store outlives the sheet
    for (const QString &name : std::as_const(names))
        co_await store.deleteRotationNamed(name);
    if (!self)
        co_return;
    m_isBusy = false;
    updateTable();
    done(QDialog::Accepted);
}
