#include "DeleteRotationWindowController.h"

#include "ActionQueue.h"
#include "KeyHandlingTableView.h"
#include "RotationStore.h"

#include <QPointer>

DeleteRotationWindowController::DeleteRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                               ActionQueue &actions, QWidget *parent)
    : RotationListDialog(store, new QPushButton(tr("Delete")), parent), deleteButton(actionButton()), m_actions(actions)
{
    setObjectName(QStringLiteral("Delete%1WindowController").arg(labels.kind));
    setWindowTitle(labels.deleteTitle);
    deleteButton->setObjectName(QStringLiteral("deleteButton"));
    deleteButton->setAutoDefault(false); // what cannot be undone is not done by a stray Return
    deleteButton->setEnabled(false);
    tableView->setDeleteHandler([this] { deletePressed(); });
    connect(deleteButton, &QPushButton::clicked, this, &DeleteRotationWindowController::deletePressed);
    connect(rotationArrayController->selection(), &QItemSelectionModel::selectionChanged, this,
            [this] { deleteButton->setEnabled(!selectedNames().isEmpty()); });
}

void DeleteRotationWindowController::deletePressed()
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(remove(selectedNames()));
}

QCoro::Task<> DeleteRotationWindowController::remove(QStringList names)
{
    const QPointer<DeleteRotationWindowController> self(this);
    RotationStore &store = m_store; // which outlives the sheet
    for (const QString &name : std::as_const(names))
        co_await store.deleteRotationNamed(name);
    if (!self)
        co_return;
    m_isBusy = false;
    updateTable();
    done(QDialog::Accepted);
}
