#include "RotationPane.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "DeleteRotationWindowController.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "NewRotationWindowController.h"
#include "OpenRotationWindowController.h"
#include "RotationStore.h"
#include "RowsText.h"
#include "SaveRotationAsWindowController.h"

#include <QCoroFuture>

#include <QClipboard>
#include <QFutureWatcher>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

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
    setFocusProxy(tableView);
    nameControls();
    layOut();
    connectControls();
    m_store.setSaveAsPanel([this] { return saveAsPanel(); });
    currentRotationDidChange(m_store.currentRotation());
    updateControls();
}

RotationPane::~RotationPane()
{
    m_store.setSaveAsPanel(nullptr);
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

void RotationPane::connectControls()
{
    connect(newButton, &QPushButton::clicked, this, &RotationPane::newRotationMenuItemClicked);
    connect(openButton, &QPushButton::clicked, this, &RotationPane::openRotationMenuItemClicked);
    connect(saveButton, &QPushButton::clicked, this, &RotationPane::saveRotationMenuItemClicked);
    connect(saveAsButton, &QPushButton::clicked, this, &RotationPane::saveRotationAsMenuItemClicked);
    connect(deleteButton, &QPushButton::clicked, this, &RotationPane::deleteRotationMenuItemClicked);
    connect(removeButton, &QPushButton::clicked, this, &RotationPane::deleteSelectedMenuItemClicked);
    connect(removeAllButton, &QPushButton::clicked, this, &RotationPane::deleteAllMenuItemClicked);
    connect(tableView, &KeyHandlingTableView::copyRequested, this, &RotationPane::copyRows);
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
    connect(&m_store, &RotationStore::unsavedWorkTouched, this, updateSoon);
    connect(m_store.tableSelection(), &QItemSelectionModel::selectionChanged, this, updateSoon);
    const QAbstractItemModel *model = m_store.tableModel();
    connect(model, &QAbstractItemModel::rowsInserted, this, updateSoon);
    connect(model, &QAbstractItemModel::rowsRemoved, this, updateSoon);
    connect(model, &QAbstractItemModel::rowsMoved, this, updateSoon);
    connect(model, &QAbstractItemModel::layoutChanged, this, updateSoon);
    connect(model, &QAbstractItemModel::modelReset, this, updateSoon);
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

void RotationPane::setRowDelegate(QAbstractItemDelegate *delegate)
{
    tableView->setItemDelegate(delegate);
}

void RotationPane::updateRows()
{
    tableView->viewport()->update();
}

void RotationPane::scrollToEnd()
{
    tableView->scrollToBottom();
}

void RotationPane::finishEditing()
{
    tableView->finishEditing();
}

/// Opens a sheet. @return what comes when it was closed, or destroyed. Hold no reference to the sheet until then.
static QFuture<int> opened(QDialog *sheet)
{
    QFuture<int> closed =
        QtFuture::connect(sheet, &QDialog::finished).onCanceled([] { return int(QDialog::Rejected); });
    sheet->open();
    return closed;
}

bool RotationPane::beginFileAction()
{
    if (m_isFileActionRunning) // its sheet or its question is still open
        return false;
    finishEditing();
    m_isFileActionRunning = true;
    return true;
}

void RotationPane::endFileAction()
{
    m_isFileActionRunning = false;
    updateControls();
}

void RotationPane::newRotationMenuItemClicked()
{
    if (beginFileAction())
        m_actions.start(newRotation());
}

QCoro::Task<> RotationPane::newRotation()
{
    const bool isGoingOn = co_await m_store.saveUnsavedChanges();
    if (isGoingOn) {
        auto *sheet = new NewRotationWindowController(m_store, m_labels, m_actions, m_alerts, window());
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        const QFuture<int> closed = opened(sheet);
        co_await closed;
    }
    endFileAction();
}

void RotationPane::openRotationMenuItemClicked()
{
    if (beginFileAction())
        m_actions.start(openRotation());
}

QCoro::Task<> RotationPane::openRotation()
{
    const bool isGoingOn = co_await m_store.saveUnsavedChanges();
    if (isGoingOn) {
        auto *sheet = new OpenRotationWindowController(m_store, m_labels, window());
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        const QFuture<int> closed = opened(sheet);
        co_await closed;
    }
    endFileAction();
}

void RotationPane::saveRotationMenuItemClicked()
{
    if (!beginFileAction())
        return;
    const QString name = m_store.currentRotation();
    m_actions.start(name.isEmpty() ? saveRotationAs() : saveRotation(name));
}

QCoro::Task<> RotationPane::saveRotation(QString name)
{
    [[maybe_unused]] const bool isWritten = co_await m_store.saveUIChanges(name); // a failure has been told
    endFileAction();
}

void RotationPane::saveRotationAsMenuItemClicked()
{
    if (beginFileAction())
        m_actions.start(saveRotationAs());
}

QCoro::Task<> RotationPane::saveRotationAs()
{
    const QString name = co_await saveAsPanel();
    // The panel has saved the rotation already; the end of the message rotation's panel has always saved it once more.
    if (m_labels.savesAgain && !name.isEmpty() && !m_store.hasUnsavedWork()) {
        [[maybe_unused]] const bool isWritten = co_await m_store.saveUIChanges(name); // a failure has been told
    }
    endFileAction();
}

QCoro::Task<QString> RotationPane::saveAsPanel()
{
    const QPointer<SaveRotationAsWindowController> sheet(
        new SaveRotationAsWindowController(m_store, m_labels, m_actions, m_alerts, window()));
    const QFuture<int> closed = opened(sheet);
    co_await closed;
    QString name;
    if (sheet != nullptr) {
        name = sheet->rotationName();
        sheet->deleteLater();
    }
    co_return name;
}

void RotationPane::deleteRotationMenuItemClicked()
{
    if (beginFileAction())
        m_actions.start(deleteRotation());
}

QCoro::Task<> RotationPane::deleteRotation()
{
    // Deleting opens the current rotation anew, which would discard its unsaved rows.
    const bool isGoingOn = co_await m_store.saveUnsavedChanges();
    if (isGoingOn) {
        auto *sheet = new DeleteRotationWindowController(m_store, m_labels, m_actions, m_alerts, window());
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        const QFuture<int> closed = opened(sheet);
        co_await closed;
    }
    endFileAction();
}

void RotationPane::deleteSelectedMenuItemClicked()
{
    finishEditing();
    m_store.deleteSelectedItems();
}

void RotationPane::deleteAllMenuItemClicked()
{
    finishEditing();
    m_store.deleteAllItems();
}

QString RotationPane::textOfSelection() const
{
    const QAbstractItemModel &model = *m_store.tableModel();
    QList<int> rows;
    for (const QModelIndex &index : m_store.tableSelection()->selectedRows())
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QList<QStringList> texts;
    for (const int row : std::as_const(rows)) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(model.index(row, column).data().toString());
        texts.append(cells);
    }
    return RowsText::fromRows(texts);
}

void RotationPane::copyRows()
{
    const QString text = textOfSelection();
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void RotationPane::pasteRows(const QString &text)
{
    if (!m_takeRows)
        return;
    const QStringList lines = RowsText::linesOf(text);
    QList<QStringList> rows;
    rows.reserve(lines.size());
    for (const QString &line : lines)
        rows.append(RowsText::columnsOf(line));
    QStringList misfits;
    for (const qsizetype place : m_takeRows(rows))
        misfits.append(lines.at(place));
    tableView->scrollToBottom();
    if (!misfits.isEmpty())
        m_actions.start(tellOfMisfits(misfits, lines.size()));
}

QCoro::Task<> RotationPane::tellOfMisfits(QStringList misfits, qsizetype lineCount)
{
    constexpr qsizetype mostShown = 5;
    constexpr qsizetype longestShown = 80;
    QString text =
        tr("%n of %1 lines do not fit this table and were left out:", nullptr, static_cast<int>(misfits.size()))
            .arg(lineCount);
    text += QLatin1Char('\n');
    for (const QString &line : misfits.first(std::min(misfits.size(), mostShown))) {
        const QString head = RowsText::asCell(line.left(longestShown));
        text += QLatin1Char('\n') + (head.size() < line.size() ? head + QChar(0x2026) : head);
    }
    if (misfits.size() > mostShown)
        text += QLatin1Char('\n') + QChar(0x2026);
    co_await m_alerts.run(tr("Paste"), text);
}

bool RotationPane::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void RotationPane::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Undo))
        m_undo.undo();
    else if (event->matches(QKeySequence::Redo))
        m_undo.redo();
    else
        QWidget::keyPressEvent(event);
}

void RotationPane::currentRotationDidChange(const QString &name)
{
    labelCurrentRotation->showText(tr("Rotation: %1").arg(name.isEmpty() ? tr("Unnamed") : name));
}

void RotationPane::updateControls()
{
    m_updateTimer.stop();
    labelUnsavedChanges->setVisible(m_store.hasUnsavedWork());
    const bool hasNames = !m_store.names().isEmpty();
    const auto enable = [this](QPushButton *button, bool isEnabled) {
        if (!isEnabled && button->hasFocus())
            tableView->setFocus(); // Qt would give the focus to the next button
        button->setEnabled(isEnabled);
    };
    enable(removeButton, m_store.tableSelection()->hasSelection());
    enable(removeAllButton, m_store.tableModel()->rowCount() > 0);
    enable(openButton, hasNames);
    enable(deleteButton, hasNames);
}
