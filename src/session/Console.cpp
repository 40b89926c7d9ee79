#include "Console.h"

#include "Secrets.h"

/// The line begins with the variable, or with a word that sets it, and so may each command of several. What is said to
/// players is no password, although it may speak of one.
bool Console::writesPassword(const QString &line)
{
    for (const QString &single : line.split(QLatin1Char(';'))) {
        const QStringList words = single.simplified().split(QLatin1Char(' '));
        const QString &verb = words.constFirst();
        const bool isChat = verb.startsWith(QLatin1String("say")) || verb == QLatin1String("tell");
        if (!isChat && (holdsPassword(verb) || holdsPassword(words.value(1))))
            return true;
    }
    return false;
}

void Console::addToCommandHistory(const QString &command)
{
    m_commandHistory.append(command);
    emit commandHistoryChanged();
}

void Console::clearCommandHistory()
{
    m_commandHistory.clear();
    emit commandHistoryChanged();
}

void Console::appendConsoleMessage(const QString &text)
{
    if (!text.isEmpty())
        m_isLineOpen = !text.endsWith(QLatin1Char('\n'));
    emit messageAppended(text);
}

void Console::appendConsoleNote(const QString &note)
{
    m_isLineOpen = false;
    emit noteAppended(note);
}

void Console::echo(const QString &command)
{
    addToCommandHistory(command);
    const QString lineBreak = m_isLineOpen ? QStringLiteral("\n") : QString();
    appendConsoleMessage(lineBreak + QStringLiteral("] ") + command + QLatin1Char('\n'));
}

void Console::appendEnd(const Reply &reply)
{
    if (!reply.isSuccess()) // the text that came with it has been shown
        appendConsoleMessage(reply.text.endsWith(QLatin1Char('\n')) ? reply.text : reply.text + QLatin1Char('\n'));
    if (reply.sends == 2)
        appendConsoleNote(tr("sent twice"));
    else if (reply.sends > 2)
        appendConsoleNote(tr("sent three times"));
    if (reply.doubled > 0)
        appendConsoleNote(tr("a part came twice"));
    if (reply.mayBeIncomplete)
        appendConsoleNote(tr("the end may be missing"));
}

void Console::clearTranscript()
{
    m_isLineOpen = false;
    emit transcriptCleared();
}
