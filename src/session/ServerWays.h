#pragma once

#include "RCon.h"
#include "ReplyEnd.h"

#include <QSet>
#include <QString>

/// What replies of this connection have taught about how the server ends them. Main thread only.
class ServerWays
{
public:
    /// When the reply to `command` may be taken for whole before silence.
    ReplyEnd endOf(const QString &command) const;
    /// Learns from a reply. @return whether its end may be missing.
    bool noteReply(const QString &command, const RCon::Outcome &outcome);
    /// The reply was taken for whole and was not: that kind of reply ends by silence from now on.
    void noteLate(const QString &command);

private:
    static constexpr int emptyWritesToTrust = 3;

    QSet<int> m_distrusted;         ///< kinds of ends
    int m_emptyWrites = 0;          ///< writes whose empty answer was all that came until silence
    QSet<QString> m_endsInLineFeed; ///< first words of commands that were answered so
};
