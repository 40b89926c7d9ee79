#include "OpenRotationWindowController.h"

#include "KeyHandlingTableView.h"
#include "RotationStore.h"

OpenRotationWindowController::OpenRotationWindowController(RotationStore &store, const RotationLabels &labels,
                                                           QWidget *parent)
    : RotationListDialog(store, new QPushButton(tr("Open")), parent)
{
    QPushButton *openButton = actionButton();
    setObjectName(QStringLiteral("Open%1WindowController").arg(labels.kind));
    setWindowTitle(labels.openTitle);
    openButton->setObjectName(QStringLiteral("openButton"));
    openButton->setDefault(true); // Return in the table arrives here, unless no row is selected
    table()->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(openButton, &QPushButton::clicked, this, &OpenRotationWindowController::openPressed);
    connect(table(), &QAbstractItemView::doubleClicked, this, &OpenRotationWindowController::openPressed);
}

void OpenRotationWindowController::openPressed()
{
    m_store.openRotationNamed(selectedNames().value(0));
    done(QDialog::Accepted);
}
