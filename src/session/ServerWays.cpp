#include "ServerWays.h"

static QString firstWord(const QString &command)
{
    return command.section(QLatin1Char(' '), 0, 0).toLower();
}

ReplyEnd ServerWays::endOf(const QString &command) const
{
    ReplyEnd end(command);
    const bool isUntried = end.kind() == ReplyEnd::Kind::EmptyWrite && m_emptyWrites < emptyWritesToTrust;
    if (isUntried || m_distrusted.contains(static_cast<int>(end.kind())))
        end.trustNothing();
    return end;
}

bool ServerWays::noteReply(const QString &command, const RCon::Outcome &outcome)
{
    if (outcome.result != RConResultSuccess)
        return false;
    const ReplyEnd::Kind kind = ReplyEnd(command).kind();
    if (kind == ReplyEnd::Kind::EmptyWrite && !outcome.isEndKnown && outcome.text.isEmpty())
        ++m_emptyWrites;
    if (kind == ReplyEnd::Kind::Dump && ReplyEnd::isDumpShort(outcome.text))
        return true;
    if (outcome.text.isEmpty())
        return false;
    if (outcome.text.endsWith(QLatin1Char('\n'))) {
        m_endsInLineFeed.insert(firstWord(command));
        return false;
    }
    return m_endsInLineFeed.contains(firstWord(command));
}

void ServerWays::noteLate(const QString &command)
{
    m_distrusted.insert(static_cast<int>(ReplyEnd(command).kind()));
}
