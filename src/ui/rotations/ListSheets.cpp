#include "ListSheets.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KeyHandlingTableView.h"
#include "LeftDoubleClick.h"
#include "RotationStore.h"

#include <QDialogButtonBox>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

static QString itself(const QString &name)
{
    return name;
}

RotationListSheet::RotationListSheet(RotationStore &store, const QString &objectName, const QString &buttonText,
                                     QWidget *parent)
    : QDialog(parent, Qt::Sheet), m_store(store), rotationArrayController({{tr("Name"), itself, nullptr}}, itself),
      tableView(new KeyHandlingTableView(this))
{
    setObjectName(objectName.arg(store.kind().name));
    setWindowModality(Qt::WindowModal);
    rotationArrayController.addObjects(store.names());
    tableView->setObjectName(QStringLiteral("tableView"));
    tableView->setAccessibleName(tr("Rotations"));
    tableView->setModel(rotationArrayController.arranged());
    tableView->setSelectionModel(rotationArrayController.selection());
    tableView->setPlaceholder(tr("No rotation has been saved yet."));
    auto *buttons = new QDialogButtonBox(this);
    m_actionButton = buttons->addButton(buttonText, QDialogButtonBox::ActionRole);
    QPushButton *closeButton = buttons->addButton(tr("Close"), QDialogButtonBox::ActionRole);
    closeButton->setObjectName(QStringLiteral("closeButton"));
    closeButton->setAutoDefault(false);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tableView, 1);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 56, fontMetrics().height() * 18);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
}

OpenRotationSheet::OpenRotationSheet(RotationStore &store, QWidget *parent)
    : RotationListSheet(store, QStringLiteral("Open%1WindowController"), tr("Open"), parent)
{
    setWindowTitle(store.kind().openTitle);
    m_actionButton->setObjectName(QStringLiteral("openButton"));
    m_actionButton->setDefault(true); // Return in the table presses it when a row is selected
    tableView->setSelectionMode(QAbstractItemView::SingleSelection);
    connect(m_actionButton, &QPushButton::clicked, this, [this] { openAndClose(selectedNames().value(0)); });
    connect(new LeftDoubleClick(tableView), &LeftDoubleClick::doubleClicked, this,
            [this](const QModelIndex &index) { openAndClose(rotationArrayController.objectAt(index)); });
    const qsizetype current = store.names().indexOf(store.currentRotation());
    tableView->selectRow(static_cast<int>(std::max<qsizetype>(current, 0)));
}

void OpenRotationSheet::openAndClose(const QString &name)
{
    m_store.openRotationNamed(name);
    accept();
}

DeleteRotationSheet::DeleteRotationSheet(RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : RotationListSheet(store, QStringLiteral("Delete%1WindowController"), tr("Delete"), parent), m_actions(actions),
      m_alerts(alerts)
{
    setWindowTitle(store.kind().deleteTitle);
    m_actionButton->setObjectName(QStringLiteral("deleteButton"));
    m_actionButton->setAutoDefault(false); // deleting cannot be undone, so Return must not press it
    m_actionButton->setEnabled(false);
    tableView->setDeleteHandler([this] { deleteSelected(true); });
    connect(m_actionButton, &QPushButton::clicked, this, [this] { deleteSelected(false); });
    connect(tableView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { m_actionButton->setEnabled(!selectedNames().isEmpty()); });
}

void DeleteRotationSheet::deleteSelected(bool isAskedFirst)
{
    if (m_isBusy)
        return;
    m_isBusy = true;
    m_actions.start(remove(selectedNames(), isAskedFirst));
}

QString DeleteRotationSheet::question(const QStringList &names) const
{
    if (names.size() == 1)
        return tr("The rotation \"%1\" will be deleted. This cannot be undone.").arg(names.constFirst());
    return tr("%n rotations will be deleted. This cannot be undone.", nullptr, static_cast<int>(names.size()));
}

QCoro::Task<> DeleteRotationSheet::remove(QStringList names, bool isAskedFirst)
{
    const QPointer<DeleteRotationSheet> self(this);
    RotationStore &store = m_store; // the store outlives the sheet
    if (isAskedFirst) {
        const QString text = question(names);
        const QStringList buttons{tr("Delete"), tr("Cancel")};
        const AlertManner manner{1};
        const int pressed = co_await m_alerts.run(windowTitle(), text, buttons, manner);
        if (!self)
            co_return;
        m_isBusy = pressed == 0;
        if (!m_isBusy)
            co_return;
    }
    for (const QString &name : std::as_const(names))
        co_await store.deleteRotationNamed(name);
    if (self)
        accept();
}
