#include "Fuzzing.h"
#include "ReadySession.h"

static constexpr qsizetype requiredDvars = 7;

static void checkDvars(const KelServer &server, const QString &dump)
{
    const QHash<QString, QString> dvars = server.dvarList();
    require(dvars.size() <= dump.count(u'\n') + 1 + requiredDvars, "a line gives one variable");
    ReadySession session;
    KelServer &other = session.server;
    for (auto each = dvars.cbegin(); each != dvars.cend(); ++each) {
        const QString &name = each.key();
        const bool isWord = !name.isEmpty() && !name.contains(u' ') && !name.contains(u'"') && !name.contains(u'\n');
        require(isWord, "a variable's name is a word");
        other.addDvarLine(QStringLiteral("  %1 \"%2\"").arg(name, each.value()));
        if (!each.value().isEmpty() && !each.value().contains(u'"') && !each.value().contains(u'\n'))
            require(other.dvarList().value(name) == each.value(), "a variable is read again from a line of a dump");
    }
}

/// The reply to "dvardump", and the replies to what is asked for because the dump lacks it.
static void fuzz(const QByteArray &bytes)
{
    const QStringList replies = repliesIn(bytes, 1 + requiredDvars);
    ReadySession session(replies);
    KelServer &server = session.server;
    bool isConnected = false;
    QObject::connect(&server, &KelServer::didConnect, &server, [&isConnected] { isConnected = true; });
    const QCoro::Task<> connecting = server.connectToHost("127.0.0.1", "50960", "secret");
    require(connecting.isReady(), "connecting ends when everything is answered");
    require(session.alerts.shown().size() <= requiredDvars + 1, "a variable is complained of once");
    require(isConnected || !session.alerts.shown().isEmpty(), "a connect that fails says so");
    checkDvars(server, replies.constFirst());
}
