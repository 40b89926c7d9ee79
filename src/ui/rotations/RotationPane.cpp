#include "RotationPane.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "ListSheets.h"
#include "NamingSheet.h"
#include "RotationStore.h"
#include "RowsText.h"

#include <QCoroFuture>

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMap>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

RotationPane::RotationPane(RotationStore &store, ActionQueue &actions, Alerts &alerts, QWidget *parent)
    : QWidget(parent), m_store(store), m_actions(actions), m_alerts(alerts), m_undo(store.rows(), *store.tableModel()),
      m_rowButtons(new QHBoxLayout), m_fileButtons(new QHBoxLayout), labelCurrentRotation(new ElidingLabel(this)),
      labelUnsavedChanges(new QLabel(tr("Unsaved changes"), this)), tableView(new KeyHandlingTableView(this))
{
    labelCurrentRotation->setObjectName(QStringLiteral("labelCurrentRotation"));
    labelUnsavedChanges->setObjectName(QStringLiteral("labelUnsavedChanges"));
    setFocusProxy(tableView);
    setUpTable();
    addButtons();
    layOut();
    m_updateTimer.setSingleShot(true);
    m_updateTimer.setInterval(0);
    const auto updateSoon = [this] {
        m_updateTimer.start();
    };
    connect(&m_updateTimer, &QTimer::timeout, this, &RotationPane::updateControls);
    connect(&m_store, &RotationStore::unsavedWorkTouched, this, updateSoon); // also by each change of the rows
    connect(m_store.tableSelection(), &QItemSelectionModel::selectionChanged, this, updateSoon);
    connect(&m_store, &RotationStore::currentRotationChanged, this, &RotationPane::currentRotationDidChange);
    connect(&m_store, &RotationStore::rotationOpened, &m_undo, &RowsUndo::reset);
    m_store.setSaveAsPanel([this] { return showSheet(Sheet::SaveAs); });
    currentRotationDidChange(m_store.currentRotation());
    updateControls();
}

RotationPane::~RotationPane()
{
    m_store.setSaveAsPanel(nullptr);
}

/// Less than a style's usual button, so that five fit side by side in a narrow window.
static void makeCompact(QPushButton *button)
{
    button->setMinimumWidth(button->fontMetrics().horizontalAdvance(button->text()) + 20);
}

QPushButton *RotationPane::makeButton(const QString &name, const QString &text, QHBoxLayout *row,
                                      std::function<void()> pressed)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(name);
    makeCompact(button);
    row->addWidget(button);
    connect(button, &QPushButton::clicked, this, std::move(pressed));
    return button;
}

void RotationPane::addButtons()
{
    const auto showing = [this](Sheet sheet) -> std::function<void()> {
        return [this, sheet] {
            startFileAction(sheet);
        };
    };
    removeButton = makeButton(QStringLiteral("removeButton"), tr("Remove"), m_rowButtons, [this] {
        finishEditing();
        m_store.deleteSelectedItems();
    });
    removeAllButton = makeButton(QStringLiteral("removeAllButton"), tr("Remove All"), m_rowButtons, [this] {
        finishEditing();
        m_store.deleteAllItems();
    });
    makeButton(QStringLiteral("newButton"), tr("New…"), m_fileButtons, showing(Sheet::New));
    openButton = makeButton(QStringLiteral("openButton"), tr("Open…"), m_fileButtons, showing(Sheet::Open));
    makeButton(QStringLiteral("saveButton"), tr("Save"), m_fileButtons, [this] { saveDocument(); });
    makeButton(QStringLiteral("saveAsButton"), tr("Save As…"), m_fileButtons, showing(Sheet::SaveAs));
    deleteButton = makeButton(QStringLiteral("deleteButton"), tr("Delete…"), m_fileButtons, showing(Sheet::Delete));
}

void RotationPane::setUpTable()
{
    const RotationKind &kind = m_store.kind();
    tableView->setObjectName(kind.tableObjectName);
    tableView->setAccessibleName(kind.tableName);
    tableView->setPlaceholder(kind.placeholder);
    tableView->setToolTip(tr("Drag rows to put them into order, or move them with Alt and the arrow keys"));
    tableView->setModel(m_store.tableModel());
    tableView->setSelectionModel(m_store.tableSelection());
    tableView->setRows(&m_store.rows());
    tableView->setDeleteHandler([this] { m_store.deleteSelectedItems(); });
    connect(tableView, &KeyHandlingTableView::copyRequested, this, &RotationPane::copyRows);
    connect(tableView, &KeyHandlingTableView::pasteRequested, this,
            [this](const QString &text) { m_actions.start(addRows(RowsText::linesOf(text))); });
    tableView->setMinimumHeight(tableView->verticalHeader()->defaultSectionSize() * 4);
    // The first column has the longer texts.
    tableView->horizontalHeader()->setStretchLastSection(false);
    tableView->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column = 1; column < m_store.tableModel()->columnCount(); ++column)
        tableView->setColumnWidth(column, 140);
}

void RotationPane::layOut()
{
    auto *title = new QHBoxLayout;
    title->addWidget(labelCurrentRotation, 1);
    title->addWidget(labelUnsavedChanges);
    m_rowButtons->addStretch();
    m_fileButtons->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(title);
    layout->addWidget(tableView, 1);
    layout->addLayout(m_rowButtons);
    layout->addLayout(m_fileButtons);
    setTabOrder();
}

void RotationPane::addButtonAtFront(QPushButton *button)
{
    m_rowButtons->insertWidget(m_rowButtons->indexOf(removeButton), button);
    makeCompact(button);
    setTabOrder();
}

void RotationPane::addButtonAtEnd(QPushButton *button)
{
    m_rowButtons->addWidget(button);
    makeCompact(button);
    setTabOrder();
}

void RotationPane::setTabOrder()
{
    QWidget *last = tableView;
    for (const QHBoxLayout *row : {m_rowButtons, m_fileButtons}) {
        for (int place = 0; place < row->count(); ++place) {
            if (QWidget *button = row->itemAt(place)->widget()) {
                QWidget::setTabOrder(last, button);
                last = button;
            }
        }
    }
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

void RotationPane::startFileAction(Sheet which)
{
    if (beginFileAction())
        m_actions.start(runFileAction(which));
}

QCoro::Task<> RotationPane::runFileAction(Sheet which)
{
    // Deleting opens the current rotation anew, too, which would discard its unsaved rows.
    bool isGoingOn = true;
    if (which != Sheet::SaveAs)
        isGoingOn = co_await m_store.saveUnsavedChanges();
    if (isGoingOn)
        co_await showSheet(which);
    endFileAction();
}

QCoro::Task<> RotationPane::saveRotation(QString name)
{
    [[maybe_unused]] const bool isWritten = co_await m_store.saveUIChanges(name); // a failure has been told
    endFileAction();
}

QDialog *RotationPane::makeSheet(Sheet which)
{
    switch (which) {
    case Sheet::New:
        return new NamingSheet(NamingSheet::Purpose::New, m_store, m_actions, m_alerts, window());
    case Sheet::SaveAs:
        return new NamingSheet(NamingSheet::Purpose::SaveAs, m_store, m_actions, m_alerts, window());
    case Sheet::Open:
        return new OpenRotationSheet(m_store, window());
    case Sheet::Delete:
        break;
    }
    return new DeleteRotationSheet(m_store, m_actions, m_alerts, window());
}

QCoro::Task<> RotationPane::showSheet(Sheet which)
{
    QDialog *sheet = makeSheet(which);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    const QFuture<int> closed =
        QtFuture::connect(sheet, &QDialog::finished).onCanceled([] { return int(QDialog::Rejected); });
    sheet->open();
    co_await closed;
}

void RotationPane::saveDocument()
{
    const QString name = m_store.currentRotation();
    if (name.isEmpty())
        startFileAction(Sheet::SaveAs);
    else if (beginFileAction())
        m_actions.start(saveRotation(name));
}

void RotationPane::copyRows()
{
    const QAbstractItemModel &model = *m_store.tableModel();
    QMap<int, QStringList> rows; // by their places in the table
    for (const QModelIndex &index : m_store.tableSelection()->selectedRows()) {
        for (int column = 0; column < model.columnCount(); ++column)
            rows[index.row()].append(index.siblingAtColumn(column).data().toString());
    }
    if (!rows.isEmpty())
        QGuiApplication::clipboard()->setText(RowsText::fromRows(rows.values()));
}

QCoro::Task<> RotationPane::addRows(QStringList lines)
{
    QList<QStringList> rows;
    for (const QString &line : std::as_const(lines))
        rows.append(RowsText::columnsOf(line));
    const QList<qsizetype> places = co_await m_store.addTexts(rows);
    tableView->scrollToBottom();
    QStringList misfits;
    for (const qsizetype place : places)
        misfits.append(lines.at(place));
    if (!misfits.isEmpty())
        co_await tellOfMisfits(misfits, lines.size());
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
