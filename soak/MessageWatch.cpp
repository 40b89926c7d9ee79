#include "MessageWatch.h"

#include "AppDelegate.h"
#include "KelMessageRotation.h"

#include <limits>
#include <utility>

MessageWatch::MessageWatch(KelMessageRotation &messages, AppDelegate &application)
    : m_messages(messages), m_application(application)
{
    connect(&messages, &KelMessageRotation::entryOnAirChanged, this, &MessageWatch::entryOnAirDidChange);
    connect(&messages, &KelMessageRotation::playStateChanged, this, [this] {
        if (std::exchange(m_isOnItsWay, false))
            m_due.last().least = 0;
    });
    connect(&application.server(), &KelServer::connectionBegan, this, &MessageWatch::callOff);
    connect(&application.server(), &KelServer::isConnectedChanged, this, &MessageWatch::callOff);
    connect(&application.server().console(), &Console::noteAppended, this, [this](const QString &note) {
        // While the server does not answer, a message that is due is not sent.
        if (note.startsWith(QLatin1String("skipped")) && std::exchange(m_isOnItsWay, false))
            m_due.last().least = 0;
    });
    connect(&application.actions(), &ActionQueue::idle, this, [this] { m_firstUnsettled = m_quickMessages.size(); });
}

ExpectedText MessageWatch::saying(const QString &text, bool canBeSent)
{
    return ExpectedText{QStringLiteral("say \"%1\"").arg(text), canBeSent ? 1 : 0, 1};
}

void MessageWatch::noteQuickMessage(const QString &text)
{
    m_quickMessages.append(saying(text, m_application.server().isConnected()));
}

void MessageWatch::entryOnAirDidChange()
{
    m_isOnItsWay = m_messages.isSending() && m_application.server().isConnected();
    if (!m_messages.isSending())
        return;
    m_due.append(saying(m_messages.entryOnAir()->message, m_isOnItsWay));
    if (m_messages.rowCount() == 1)
        m_due.last().most = std::numeric_limits<int>::max();
}

void MessageWatch::callOff()
{
    if (std::exchange(m_isOnItsWay, false))
        m_due.last().least = 0;
    for (qsizetype i = m_firstUnsettled; i < m_quickMessages.size(); ++i)
        m_quickMessages[i].least = 0;
}

QList<ExpectedText> MessageWatch::takeDue()
{
    return std::exchange(m_due, {});
}

QList<ExpectedText> MessageWatch::takeQuickMessages()
{
    m_firstUnsettled = 0;
    return std::exchange(m_quickMessages, {});
}
