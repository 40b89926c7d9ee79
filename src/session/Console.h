#pragma once

#include "Exchange.h"

#include <QObject>
#include <QStringList>

/// The session's raw console: what its transcript gets, and the history of commands. The transcript itself is kept by
/// who shows it. Main thread only.
class Console : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Whether a line sets a password, as far as it tells: then nothing of it is replaced, named or told elsewhere.
    static bool writesPassword(const QString &line);

    /// Every command sent since the last connect, oldest first, and what was refused: it may be mended.
    QStringList commandHistory() const { return m_commandHistory; }
    int commandHistoryCursor() const { return static_cast<int>(m_commandHistory.size()); }
    void addToCommandHistory(const QString &command);
    void clearCommandHistory();

    /// Appends to the transcript as it stands.
    void appendConsoleMessage(const QString &text);
    /// Appends a line about what stands before it.
    void appendConsoleNote(const QString &note);
    /// Puts a command into the history, and into the transcript on a line of its own.
    void echo(const QString &command);
    /// What a reply tells beside its text, which the transcript has got datagram by datagram.
    void appendEnd(const Reply &reply);
    void clearTranscript();

signals:
    void messageAppended(const QString &text);
    /// What is to be said about the text before it; no text of the server's.
    void noteAppended(const QString &note);
    void transcriptCleared();
    void commandHistoryChanged();

private:
    QStringList m_commandHistory;
    bool m_isLineOpen = false; ///< the transcript does not end with a line feed
};
