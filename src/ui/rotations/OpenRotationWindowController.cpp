#include "OpenRotationWindowController.h"

#include "KeyHandlingTableView.h"
#include "LeftDoubleClick.h"
#include "RotationStore.h"

#include <algorithm>

OpenRotationWindowController::OpenRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                           QWidget *parent)
    : RotationListDialog(store, new QPushButton(tr("Open")), parent)
{
    QPushButton *openButton = actionButton();
    setObjectName(QStringLiteral("Open%1WindowController").arg(labels.kind));
    setWindowTitle(labels.openTitle);
    openButton->setObjectName(QStringLiteral("openButton"));
    openButton->setDefault(true); // Return in the table presses it when a row is selected
    table()->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(openButton, &QPushButton::clicked, this, &OpenRotationWindowController::openPressed);
    connect(new LeftDoubleClick(table()), &LeftDoubleClick::doubleClicked, this,
            [this](const QModelIndex &index) { openAndClose(index.siblingAtColumn(0).data().toString()); });
    const QStringList names = m_store.names();
    const qsizetype current = names.indexOf(m_store.currentRotation());
    table()->selectRow(static_cast<int>(std::max<qsizetype>(current, 0)));
}

void OpenRotationWindowController::openPressed()
{
    openAndClose(selectedNames().value(0));
}

void OpenRotationWindowController::openAndClose(const QString &name)
{
    m_store.openRotationNamed(name);
    done(QDialog::Accepted);
}
