#include "RotationPane.h"

#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "RotationStore.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QVBoxLayout>

RotationPane::RotationPane(RotationStore &store, const RotationLabels &labels, ActionQueue &actions, Alerts &alerts,
                           QWidget *parent)
    : QWidget(parent), labelCurrentRotation(new ElidingLabel(this)),
      labelUnsavedChanges(new QLabel(tr("Unsaved changes"), this)), tableView(new KeyHandlingTableView(this)),
      removeButton(new QPushButton(tr("Remove"), this)), removeAllButton(new QPushButton(tr("Remove All"), this)),
      newButton(new QPushButton(tr("New…"), this)), openButton(new QPushButton(tr("Open…"), this)),
      saveButton(new QPushButton(tr("Save"), this)), saveAsButton(new QPushButton(tr("Save As…"), this)),
      deleteButton(new QPushButton(tr("Delete…"), this)), m_store(store), m_labels(labels), m_actions(actions),
      m_alerts(alerts), m_undo(store.rows(), *store.tableModel()), m_rowButtons(new QHBoxLayout)
{
    nameControls();
    layOut();
    connectControls();
    m_store.setSaveAsPanel([this] { return saveAsPanel(); });
    currentRotationDidChange(m_store.currentRotation());
    updateControls();
}

void RotationPane::nameControls()
{
    labelCurrentRotation->setObjectName(QStringLiteral("labelCurrentRotation"));
    labelUnsavedChanges->setObjectName(QStringLiteral("labelUnsavedChanges"));
    tableView->setObjectName(m_labels.tableObjectName);
    tableView->setAccessibleName(m_labels.tableName);
    tableView->setPlaceholder(m_labels.placeholder);
    tableView->setModel(m_store.tableModel());
    tableView->setSelectionModel(m_store.tableSelection());
    tableView->setRows(&m_store.rows());
    tableView->setMinimumHeight(tableView->verticalHeader()->defaultSectionSize() * 4);
    // The first column has the longer texts.
    tableView->horizontalHeader()->setStretchLastSection(false);
    tableView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column = 1; column < m_store.tableModel()->columnCount(); ++column)
        tableView->setColumnWidth(column, 140);
    removeButton->setObjectName(QStringLiteral("removeButton"));
    removeAllButton->setObjectName(QStringLiteral("removeAllButton"));
    newButton->setObjectName(QStringLiteral("newButton"));
    openButton->setObjectName(QStringLiteral("openButton"));
    saveButton->setObjectName(QStringLiteral("saveButton"));
    saveAsButton->setObjectName(QStringLiteral("saveAsButton"));
    deleteButton->setObjectName(QStringLiteral("deleteButton"));
    tableView->setToolTip(tr("Drag rows to put them into order, or move them with Alt and the arrow keys"));
}

void RotationPane::makeCompact(QPushButton *button)
{
    // Less than a style's usual button, so that five fit side by side in a narrow window.
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + 20);
}

void RotationPane::layOut()
{
    auto *title = new QHBoxLayout;
    title->addWidget(labelCurrentRotation, 1);
    title->addWidget(labelUnsavedChanges);
    m_rowButtons->addWidget(removeButton);
    m_rowButtons->addWidget(removeAllButton);
    m_rowButtons->addStretch();
    auto *fileButtons = new QHBoxLayout;
    for (QPushButton *button : {newButton, openButton, saveButton, saveAsButton, deleteButton})
        fileButtons->addWidget(button);
    fileButtons->addStretch();
    for (QPushButton *button :
         {removeButton, removeAllButton, newButton, openButton, saveButton, saveAsButton, deleteButton})
        makeCompact(button);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(title);
    layout->addWidget(tableView, 1);
    layout->addLayout(m_rowButtons);
    layout->addLayout(fileButtons);
    setTabOrder();
}

void RotationPane::addButtonAtFront(QPushButton *button)
{
    m_rowButtons->insertWidget(static_cast<int>(m_frontButtons.size()), button);
    m_frontButtons.append(button);
    makeCompact(button);
    setTabOrder();
}

void RotationPane::addButtonAtEnd(QPushButton *button)
{
    m_rowButtons->addWidget(button);
    m_endButtons.append(button);
    makeCompact(button);
    setTabOrder();
}

void RotationPane::setTabOrder()
{
    QList<QWidget *> order{tableView};
    order.append(QList<QWidget *>(m_frontButtons.begin(), m_frontButtons.end()));
    order.append({removeButton, removeAllButton});
    order.append(QList<QWidget *>(m_endButtons.begin(), m_endButtons.end()));
    order.append({newButton, openButton, saveButton, saveAsButton, deleteButton});
    for (qsizetype i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order.at(i - 1), order.at(i));
}

void RotationPane::connectControls()
{
    connect(newButton, &QPushButton::clicked, this, &RotationPane::newRotationMenuItemClicked);
    connect(openButton, &QPushButton::clicked, this, &RotationPane::openRotationMenuItemClicked);
    connect(saveButton, &QPushButton::clicked, this, &RotationPane::saveRotationMenuItemClicked);
    connect(saveAsButton, &QPushButton::clicked, this, &RotationPane::saveRotationAsMenuItemClicked);
    connect(deleteButton, &QPushButton::clicked, this, &RotationPane::deleteRotationMenuItemClicked);
    connect(removeButton, &QPushButton::clicked, this, &RotationPane::deleteSelectedMenuItemClicked);
    connect(removeAllButton, &QPushButton::clicked, this, &RotationPane::deleteAllMenuItemClicked);
    connect(tableView, &KeyHandlingTableView::copyRequested, this, [this] {
        const QString text = textOfSelection();
        if (!text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    });
    connect(tableView, &KeyHandlingTableView::pasteRequested, this, &RotationPane::pasteRows);
    connect(&m_store, &RotationStore::currentRotationChanged, this, &RotationPane::currentRotationDidChange);
    connect(&m_store, &RotationStore::rotationOpened, &m_undo, &RowsUndo::reset);

    m_updateTimer.setSingleShot(true);
    m_updateTimer.setInterval(0);
    connect(&m_updateTimer, &QTimer::timeout, this, &RotationPane::updateControls);
    const auto updateSoon = [this] {
        m_updateTimer.start();
    };
    connect(&m_store, &RotationStore::currentRotationChanged, this, updateSoon);
    connect(&m_store, &RotationStore::rotationOpened, this, updateSoon);
    connect(&m_store, &RotationStore::unsavedChangesChanged, this, updateSoon);
    connect(m_store.tableSelection(), &QItemSelectionModel::selectionChanged, this, updateSoon);
    const QAbstractItemModel *model = m_store.tableModel();
    connect(model, &QAbstractItemModel::rowsInserted, this, updateSoon);
    connect(model, &QAbstractItemModel::rowsRemoved, this, updateSoon);
    connect(model, &QAbstractItemModel::rowsMoved, this, updateSoon);
    connect(model, &QAbstractItemModel::layoutChanged, this, updateSoon);
    connect(model, &QAbstractItemModel::modelReset, this, updateSoon);
}
