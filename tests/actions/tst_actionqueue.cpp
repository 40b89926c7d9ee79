#include "ActionQueue.h"

#include <QCoroFuture>

#include <QPromise>
#include <QSignalSpy>
#include <QTest>

#include <deque>
#include <functional>
#include <stdexcept>

/// An action of the tests: writes down what happens to it and waits in its turn until the test lets it go.
class Stage : public QObject
{
    Q_OBJECT
public:
    QCoro::Task<> act(QString name)
    {
        co_await actInTurn(name);
        if (name == "a" && afterA)
            afterA();
    }

    QCoro::Task<> actInTurn(QString name)
    {
        const ActionQueue::Turn turn = co_await queue.turn();
        if (!turn) {
            log.append(name + QStringLiteral(" dropped"));
            co_return;
        }
        log.append(name + QStringLiteral(" begins"));
        QPromise<void> promise;
        promise.start();
        const QFuture<void> pending = promise.future();
        m_waiting.push_back(std::move(promise));
        co_await pending;
        log.append(name + (turn ? QStringLiteral(" ends") : QStringLiteral(" called off")));
    }

    QCoro::Task<> actOn(QString name, int value)
    {
        const ActionQueue::Turn turn = co_await queue.turn();
        if (turn)
            log.append(QStringLiteral("%1 acts on %2").arg(name).arg(value));
    }

    QCoro::Task<> fail()
    {
        const ActionQueue::Turn turn = co_await queue.turn();
        throw std::runtime_error("broken");
    }

    void letGo()
    {
        QPromise<void> promise = std::move(m_waiting.front());
        m_waiting.pop_front();
        promise.finish();
    }

    QStringList log;
    std::function<void()> afterA; ///< called when a's turn has been handed on, but who got it has not woken yet
    ActionQueue queue;

private:
    std::deque<QPromise<void>> m_waiting;
};

class ActionQueueTest : public QObject
{
    Q_OBJECT
private slots:
    void runsOneAtATimeInOrder()
    {
        Stage stage;
        for (const char *name : {"a", "b", "c"})
            stage.queue.start(stage.act(QLatin1String(name)));
        QCOMPARE(stage.log, QStringList{QStringLiteral("a begins")});
        stage.afterA = [&stage] {
            stage.queue.start(stage.act("d"));
        }; // does not overtake b
        stage.letGo();
        for (const int lines : {3, 5, 7}) {
            QTRY_COMPARE(stage.log.size(), lines);
            stage.letGo();
        }
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.join(QLatin1Char(',')),
                 QStringLiteral("a begins,a ends,b begins,b ends,c begins,c ends,d begins,d ends"));
    }

    void refusingTurnsTheWaitingAwayAndLeavesTheRunningAlone()
    {
        Stage stage;
        for (const char *name : {"a", "b", "c"})
            stage.queue.start(stage.act(name));
        stage.queue.refuseWaiting();
        stage.queue.start(stage.act("after")); // asked for later: not among them
        stage.letGo();
        QTRY_VERIFY(stage.log.contains("after begins"));
        stage.letGo();
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.filter("dropped").size(), 2);
        QVERIFY(stage.log.contains("a ends"));
        QVERIFY(stage.log.contains("after ends"));
    }

    void droppingBetweenGrantAndWakeUpRefuses()
    {
        Stage stage;
        stage.afterA = [&stage] {
            stage.queue.dropWaiting();
        };
        stage.queue.start(stage.act(QStringLiteral("a")));
        stage.queue.start(stage.act(QStringLiteral("b")));
        stage.letGo();
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.last(), QStringLiteral("b dropped"));
        stage.queue.start(stage.actOn(QStringLiteral("next"), 1)); // the turn has not got lost
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.last(), QStringLiteral("next acts on 1"));
    }

    void aClosedQueueStartsNothingMore()
    {
        Stage stage;
        stage.queue.start(stage.act(QStringLiteral("a")));
        stage.queue.start(stage.act(QStringLiteral("b")));
        stage.queue.close();
        stage.queue.start(stage.act(QStringLiteral("late")));
        stage.letGo();
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.filter(QStringLiteral("begins")), QStringList{QStringLiteral("a begins")});
        stage.queue.reopen();
        stage.queue.start(stage.actOn("asked for after that", 1));
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(stage.log.last(), "asked for after that acts on 1");
    }

    void aFaultyActionIsReportedAndGivesWay()
    {
        Stage stage;
        QSignalSpy faults(&stage.queue, &ActionQueue::faulted);
        stage.queue.start(stage.act(QStringLiteral("a")));
        stage.queue.start(stage.fail());
        stage.queue.start(stage.actOn(QStringLiteral("next"), 1));
        stage.letGo();
        QTRY_VERIFY(stage.queue.isIdle());
        QCOMPARE(faults, QList<QVariantList>({{QStringLiteral("broken")}}));
        QCOMPARE(stage.log.last(), QStringLiteral("next acts on 1"));
    }
};

QTEST_GUILESS_MAIN(ActionQueueTest)
#include "tst_actionqueue.moc"
