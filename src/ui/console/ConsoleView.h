#pragma once

#include <QCoroTask>

#include <QLineEdit>
#include <QWidget>

class ActionQueue;
class HistoryStepper;
class KelServer;
class TranscriptView;

/// The raw console: transcript, command line and history.
class ConsoleView : public QWidget
{
    Q_OBJECT
public:
    /// `server` and `actions` outlive the view.
    ConsoleView(KelServer &server, ActionQueue &actions, QWidget *parent = nullptr);

    TranscriptView *consoleOutput;
    QLineEdit *consoleInput;
    HistoryStepper *numericUpDownCommandCursor;

public slots:
    void consoleInputDidChange();
    void consoleHistoryStepperChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void connectionDidChange();
    QCoro::Task<> sendLine(QString line);

    KelServer &m_server;
    ActionQueue &m_actions;
    /// True while the stepper writes into the command line, which must not be taken for a command.
    bool m_suppressCommandSending = false;
};
