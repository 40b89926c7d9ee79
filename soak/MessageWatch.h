#pragma once

#include "Sequence.h"

#include <QList>
#include <QObject>

class AppDelegate;
class KelMessageRotation;

/// Notes every message that becomes due while the rotation plays, and every quick message, and which of them were
/// called off before they were sent. A message that follows itself is not announced: the only one of a table may be
/// said any number of times, and the hand leaves the order of several alone while they play.
class MessageWatch : public QObject
{
    Q_OBJECT
public:
    MessageWatch(KelMessageRotation &messages, AppDelegate &application);

    /// "Send" was pressed with this text, which is another every time.
    void noteQuickMessage(const QString &text);

    /// The commands that were due since the last call, in their order. Nothing may be on its way.
    QList<ExpectedText> takeDue();
    QList<ExpectedText> takeQuickMessages();

private:
    void entryOnAirDidChange();
    void callOff();
    static ExpectedText saying(const QString &text, bool canBeSent);

    KelMessageRotation &m_messages;
    AppDelegate &m_application;
    QList<ExpectedText> m_due;
    QList<ExpectedText> m_quickMessages;
    qsizetype m_firstUnsettled = 0; ///< of the quick messages: those before it are sent
    bool m_isOnItsWay = false;      ///< the last one that was due
};
