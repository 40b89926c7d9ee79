#include "DataColumns.h"
#include "FetchingSession.h"
#include "ServerAction.h"
#include "Wait.h"

#include <QTest>

using Kind = Outcome::Kind;

/// A session in which actions of the tests run.
struct Session : FetchingSession {
    Session()
    {
        exchange.answer("dvardump", ScriptedExchange::dump());
        awaited(server.connectToHost("192.0.2.1", "50960", "typed"));
        exchange.forgetSent();
        exchange.answerEverything(ScriptedExchange::ok());
        QObject::connect(&server, &KelServer::outcomeKnown, &server,
                         [this](const Outcome &outcome) { outcomes.append(outcome); });
    }
    /// Does these one after the other as one action: "NAME=VALUE" is a write, anything else a command.
    QCoro::Task<> perform(QStringList steps, Outcome outcome)
    {
        ServerAction action(server, actions, outcome);
        co_await action.begin();
        for (const QString &step : std::as_const(steps)) {
            const QStringList words = step.split('=');
            bool isTaken = false;
            if (words.size() == 2)
                isTaken = co_await action.write(words.first(), words.last());
            else
                isTaken = co_await action.send(step);
            taken.append(isTaken);
        }
    }

    QList<Outcome> outcomes;
    QList<bool> taken;
};

class ServerActionTest : public QObject
{
    Q_OBJECT
private slots:
    void tellsWhatBecameOfIt_data()
    {
        const auto ok = &ScriptedExchange::ok;
        const Reply lost = ScriptedExchange::failure();
        const auto row =
            dataColumns<QStringList, QList<Reply>, QString, QStringList>("steps", "replies", "summary", "alerts");
        row("the first line", {"clientkick 3"}, {ok("\nAnn  was kicked\nmore\n")}, "Ann was kicked", {});
        row("each says something", {"a", "b", "c"}, {ok("x"), ok("y"), ok("x")}, "x; y", {});
        row("failure", {"map ward_x"}, {lost}, "Kick (Ann, Bob) failed: no answer",
            {"'map' returned an error: no answer"});
        row("a part fails", {"v=1", "b"}, {lost, ok("x")}, "Kick (Ann, Bob) failed: no answer",
            {"'v' returned an error: no answer"});
        row("a value is turned down", {"v=1"}, {ok("1 is not a valid value\n")},
            "Kick (Ann, Bob) failed: 1 is not a valid value", {});
        row("a password", {"door_password=zyx"}, {ok("door_password set to zyx")}, "Kick (Ann, Bob): done", {});
        row("a password that is turned down", {"door_password=zyx"}, {ok("zyx is not a valid value")},
            "Kick (Ann, Bob) failed: The server has refused it.", {});
        row("a password by a command", {"set rcon_password zyx"}, {ok("rcon_password is zyx")}, "Kick (Ann, Bob): done",
            {});
    }
    void tellsWhatBecameOfIt()
    {
        QFETCH(QStringList, steps);
        QFETCH(QList<Reply>, replies);
        Session session;
        for (qsizetype i = 0; i < steps.size(); ++i) {
            const QStringList words = steps.at(i).split('=');
            const QString write = QString("setadmindvar %1 \"%2\"").arg(words.first(), words.last());
            session.exchange.answer(words.size() == 2 ? write : steps.at(i), replies.at(i));
        }
        session.actions.start(session.perform(steps, {Kind::Command, "Kick", {"Ann", "Bob"}}));
        QTRY_VERIFY(session.actions.isIdle());
        QCOMPARE(session.outcomes.size(), 1);
        QTEST(session.outcomes.first().summary(), "summary");
        QVERIFY(session.outcomes.first().time.isValid());
        QTEST(session.alerts.texts(), "alerts");
        for (qsizetype i = 0; i < replies.size(); ++i)
            QCOMPARE(session.taken.at(i), replies.at(i).isSuccess());
    }

    void whatIsCalledOffSendsNothingMoreAndTellsNothing()
    {
        Session session;
        session.exchange.hold();
        session.actions.start(session.perform({"a", "b"}, {Kind::Command, "Kick"}));
        QTRY_COMPARE(session.exchange.keptCount(), 1);
        session.actions.dropWaiting();
        session.server.cancelExchange();
        QTRY_VERIFY(session.actions.isIdle());
        QCOMPARE(session.exchange.sent(), QStringList("a"));
        QVERIFY(session.outcomes.isEmpty() && session.alerts.shown().isEmpty());
    }
};

QTEST_GUILESS_MAIN(ServerActionTest)
#include "tst_serveraction.moc"
