#include "RotationListDialog.h"

#include "KeyHandlingTableView.h"
#include "RotationStore.h"

#include <QDialogButtonBox>
#include <QVBoxLayout>

static QString nameOf(const RotationName &rotation)
{
    return rotation.name;
}

RotationListDialog::RotationListDialog(RotationStore &store, QPushButton *actionButton, QWidget *parent)
    : QDialog(parent, Qt::Sheet), m_store(store),
      rotationArrayController(new ArrayController<RotationName>({{tr("Name"), nameOf, nullptr}}, nameOf, this)),
      tableView(new KeyHandlingTableView(this)), m_actionButton(actionButton)
{
    setWindowModality(Qt::WindowModal);
    tableView->setObjectName(QStringLiteral("tableView"));
    tableView->setAccessibleName(tr("Rotations"));
    tableView->setModel(rotationArrayController->arranged());
    tableView->setSelectionModel(rotationArrayController->selection());
    tableView->setPlaceholder(tr("No rotation has been saved yet."));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(actionButton, QDialogButtonBox::ActionRole);
    QPushButton *closeButton = buttons->addButton(tr("Close"), QDialogButtonBox::ActionRole);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setAutoDefault(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tableView, 1);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 56, fontMetrics().height() * 18);
    connect(closeButton, &QPushButton::clicked, this, &RotationListDialog::closePressed);
    updateTable();
}

void RotationListDialog::updateTable()
{
    QList<RotationName> rows;
    for (const QString &name : m_store.names())
        rows.append(RotationName{name});
    rotationArrayController->mergeContent(rows);
}

QStringList RotationListDialog::selectedNames() const
{
    QStringList names;
    for (const RotationName &rotation : rotationArrayController->selectedObjects())
        names.append(rotation.name);
    return names;
}
