#pragma once

#include <QString>
#include <QStringList>

/// What the program was asked for on its command line. Never a password: the list of processes shows the line to
/// everybody.
struct CommandLine {
    QString target; ///< HOST:PORT or the label of a saved server; empty when no connect was asked for
    bool isDemo = false;
    QString error; ///< what is wrong with the line; empty when it is good

    /// @return the text that --help or --version asks for; empty when neither is given.
    static QString answerWithoutDisplay(const QStringList &arguments);
    /// @param arguments  without the desktop's own options, which QApplication takes out.
    static CommandLine parse(const QStringList &arguments);
    static QString version();
};
