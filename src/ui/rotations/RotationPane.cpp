#include "RotationPane.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "DeleteRotationWindowController.h"
#include "ElidingLabel.h"
#include "KeyHandlingTableView.h"
#include "NewRotationWindowController.h"
#include "OpenRotationWindowController.h"
#include "RotationStore.h"
#include "SaveRotationAsWindowController.h"

#include <QCoroFuture>

#include <QClipboard>
#include <QFutureWatcher>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>

#include <algorithm>

RotationPane::~RotationPane()
{
    m_store.setSaveAsPanel(nullptr);
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
    if (m_isFileActionRunning) // its sheet or its question is in front
        return false;
    tableView->finishEditing();
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
    // Deleting opens the current rotation anew, and with it what was not saved would be lost.
    const bool isGoingOn = co_await m_store.saveUnsavedWork();
    if (isGoingOn) {
        auto *sheet = new DeleteRotationWindowController(m_store, m_labels, m_actions, window());
        sheet->setAttribute(Qt::WA_DeleteOnClose);
        const QFuture<int> closed = opened(sheet);
        co_await closed;
    }
    endFileAction();
}

void RotationPane::deleteSelectedMenuItemClicked()
{
    tableView->finishEditing();
    m_store.deleteSelectedItems();
}

void RotationPane::deleteAllMenuItemClicked()
{
    tableView->finishEditing();
    m_store.deleteAllItems();
}

/// A text as one column of one line.
static QString asCell(QString text)
{
    for (QChar &character : text) {
        if (character == QLatin1Char('\t') || character == QLatin1Char('\n') || character == QLatin1Char('\r'))
            character = QLatin1Char(' ');
    }
    return text;
}

QString RotationPane::textOfSelection() const
{
    const QAbstractItemModel &model = *m_store.tableModel();
    QList<int> rows;
    for (const QModelIndex &index : m_store.tableSelection()->selectedRows())
        rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    for (const int row : std::as_const(rows)) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(asCell(model.index(row, column).data().toString()));
        lines.append(cells.join(QLatin1Char('\t')));
    }
    return lines.join(QLatin1Char('\n'));
}

void RotationPane::pasteRows(const QString &text)
{
    if (!m_takeRows)
        return;
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.last().isEmpty())
        lines.removeLast();
    QList<QStringList> rows;
    rows.reserve(lines.size());
    for (QString &line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        rows.append(line.split(QLatin1Char('\t')));
    }
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
    QString text = tr("%1 of %2 lines do not fit this table and were left out:").arg(misfits.size()).arg(lineCount);
    text += QLatin1Char('\n');
    for (const QString &line : misfits.first(std::min(misfits.size(), mostShown))) {
        const QString head = asCell(line.left(longestShown));
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
            tableView->setFocus(); // else it would go on to the next button
        button->setEnabled(isEnabled);
    };
    enable(removeButton, m_store.tableSelection()->hasSelection());
    enable(removeAllButton, m_store.tableModel()->rowCount() > 0);
    enable(openButton, hasNames);
    enable(deleteButton, hasNames);
}
