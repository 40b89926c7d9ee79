#include "DeleteRotationWindowController.h"

#include "ActionQueue.h"
#include "KeyHandlingTableView.h"
#include "RotationStore.h"

#include <QPointer>

DeleteRotationWindowController::DeleteRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                               ActionQueue &actions, QWidget *parent)
    : RotationListDialog(store, new QPushButton(tr("Delete")), parent), m_actions(actions)
{
    QPushButton *deleteButton = actionButton();
    setObjectName(QStringLiteral("Delete%1WindowController").arg(labels.kind));
    setWindowTitle(labels.deleteTitle);
    deleteButton->setObjectName(QStringLiteral("deleteButton"));
    deleteButton->setAutoDefault(false); // what cannot be undone is not done by a stray Return
    deleteButton->setEnabled(false);
    table()->setDeleteHandler([this] { deletePressed(); });
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
