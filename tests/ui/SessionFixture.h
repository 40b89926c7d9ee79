#pragma once

#include "ActionQueue.h"
#include "DvarFetcher.h"
#include "KelServer.h"
#include "Preferences.h"
#include "Reconnecting.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "UnknownDvars.h"
#include "Wait.h"

#include <QTemporaryDir>
#include <QTest>

/// What a view of the tests stands on: a scripted server, recorded alerts, a folder of its own.
struct SessionFixture {
    SessionFixture() { exchange.answer(QStringLiteral("dvardump"), ScriptedExchange::dump()); }

    void connectToServer()
    {
        awaited(server.connectToHost(QStringLiteral("192.0.2.1"), QStringLiteral("50960"), QStringLiteral("typed")));
        exchange.forgetSent();
    }

    /// @return whether all actions have ended.
    bool settle()
    {
        return QTest::qWaitFor([this] { return actions.isIdle(); }, 60000);
    }

    /// Answers one request after another. @return whether they were these, in this order, and all actions then ended.
    bool answerInOrder(const QStringList &lines)
    {
        for (const QString &line : lines) {
            if (!QTest::qWaitFor([this] { return exchange.keptCount() == 1; }) || exchange.sent().last() != line)
                return false;
            exchange.release();
        }
        return settle();
    }

    /// What the server was asked once all actions have ended.
    QStringList sent() { return settle() ? exchange.sent() : QStringList{QStringLiteral("an action has not ended")}; }

    QTemporaryDir folder;
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    Preferences asked{folder.filePath(QStringLiteral("asked.ini"))};
    UnknownDvars unknownDvars{asked};
    DvarFetcher fetcher{server, actions, unknownDvars};
    Reconnecting reconnecting{server, actions, alerts, fetcher};
};
