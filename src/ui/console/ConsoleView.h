#pragma once

#include "TabPage.h"

class ActionQueue;
class Console;
class HistoryStepper;
class KelServer;
class QLineEdit;
class TranscriptView;

/// The raw console: transcript, command line and history.
class ConsoleView : public TabPage
{
    Q_OBJECT
public:
    /// `server` and `actions` outlive the view.
    ConsoleView(KelServer &server, ActionQueue &actions, QWidget *parent = nullptr);

public slots:
    void consoleInputDidChange();
    void consoleHistoryStepperChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectionDidChange();
    QCoro::Task<> sendLine(QString line);

    TranscriptView *consoleOutput;
    QLineEdit *consoleInput;
    HistoryStepper *numericUpDownCommandCursor;

    KelServer &m_server;
    Console &m_console;
    ActionQueue &m_actions;
    /// True while the stepper writes into the command line, which must not be taken for a command.
    bool m_suppressCommandSending = false;
};
