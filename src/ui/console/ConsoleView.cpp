#include "ConsoleView.h"

#include "ActionQueue.h"
#include "HistoryStepper.h"
#include "KelServer.h"
#include "TranscriptView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

ConsoleView::ConsoleView(KelServer &server, ActionQueue &actions, QWidget *parent)
    : TabPage(parent), consoleOutput(new TranscriptView(this)), consoleInput(new QLineEdit(this)),
      numericUpDownCommandCursor(new HistoryStepper(this)), m_server(server), m_console(server.console()),
      m_actions(actions)
{
    consoleOutput->setObjectName(QStringLiteral("consoleOutput"));
    consoleOutput->setAccessibleName(tr("Console output"));
    consoleOutput->setPlaceholderText(
        tr("Commands and the server's replies appear here. Type a command below and press Return."));
    consoleInput->setObjectName(QStringLiteral("consoleInput"));
    consoleInput->setAccessibleName(tr("Command"));
    consoleInput->setFont(consoleOutput->font());
    consoleInput->installEventFilter(this);

    auto *row = new QHBoxLayout;
    auto *label = new QLabel(tr("Command"), this);
    label->setBuddy(consoleInput);
    row->addWidget(label);
    row->addWidget(consoleInput, 1);
    row->addWidget(numericUpDownCommandCursor);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(consoleOutput, 1);
    layout->addLayout(row);
    setFocusProxy(consoleInput);

    connect(consoleInput, &QLineEdit::returnPressed, this, &ConsoleView::consoleInputDidChange);
    connect(numericUpDownCommandCursor, &QSpinBox::valueChanged, this, &ConsoleView::consoleHistoryStepperChanged);
    connect(&m_console, &Console::messageAppended, consoleOutput, &TranscriptView::appendConsoleMessage);
    connect(&m_console, &Console::noteAppended, consoleOutput, &TranscriptView::appendNote);
    connect(&m_console, &Console::transcriptCleared, consoleOutput, &QPlainTextEdit::clear);
    connect(&m_server, &KelServer::isConnectedChanged, this, &ConsoleView::connectionDidChange);
    connect(&m_console, &Console::commandHistoryChanged, this,
            [this] { numericUpDownCommandCursor->setCount(m_console.commandHistoryCursor()); });
    connectionDidChange();
}

void ConsoleView::connectionDidChange()
{
    const bool isConnected = m_server.isConnected();
    consoleInput->setEnabled(isConnected);
    consoleInput->setPlaceholderText(isConnected ? tr("Type a console command") : tr("Not connected"));
}

void ConsoleView::consoleInputDidChange()
{
    if (m_suppressCommandSending)
        return;
    const QString line = consoleInput->text();
    consoleInput->setText({}); // unlike clear() it also forgets what was typed, which may be a password
    numericUpDownCommandCursor->reset();
    m_actions.start(sendLine(line));
}

QCoro::Task<> ConsoleView::sendLine(QString line)
{
    const ActionQueue::Turn turn = co_await m_actions.turn();
    bool isSent = false;
    if (turn) {
        const Reply reply = co_await m_server.consoleInputDidChange(line);
        isSent = !reply.isRefused;
    }
    if (!isSent && consoleInput->text().isEmpty()) // a command that was not sent comes back
        consoleInput->setText(line);
}

void ConsoleView::consoleHistoryStepperChanged()
{
    m_suppressCommandSending = true;
    const QStringList history = m_console.commandHistory();
    const int back = numericUpDownCommandCursor->value();
    if (back >= 0 && back < history.size())
        consoleInput->setText(history.at(history.size() - 1 - back));
    else
        consoleInput->setText({});
    m_suppressCommandSending = false;
}

bool ConsoleView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == consoleInput && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            numericUpDownCommandCursor->stepBy(key == Qt::Key_Up ? 1 : -1);
            return true;
        }
    }
    return TabPage::eventFilter(watched, event);
}
