#include "DataColumns.h"
#include "PreciseOneShotTimer.h"
#include "RotationFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

struct Player : RotationFixture {
    Player()
    {
        exchange.answerEverything(
            ScriptedExchange::ok("rcon_password \"0\"\nsv_hostname \"0\"\nsv_ranked \"0\"\nplaylist_enabled \"0\"\n"
                                 "playlist_excludeMap \"0\"\nplaylist_excludeGametype \"0\"\n"
                                 "playlist_excludeGametypeMap \"0\"\n"));
        awaited(server.connectToHost("192.0.2.1", "50960", "x"));
    }
    /// @return what was sent, the state, the index, the row on air, and the seconds that are waited.
    QString take(const QString &step)
    {
        exchange.forgetSent();
        using Step = void (KelMessageRotation::*)();
        const QHash<QString, Step> steps{{"start", &KelMessageRotation::startRotation},
                                         {"stop", &KelMessageRotation::stopRotation},
                                         {"clear", &KelMessageRotation::deleteAllItems},
                                         {"stale", &KelMessageRotation::advanceRotation}};
        if (const Step member = steps.value(step))
            (messages.*member)();
        else if (step == "timer" && std::exchange(timer->wait, std::nullopt))
            timer->fire();
        else if (step == "swap")
            messages.rows().moveObjectsInArrangedObjects({0}, 2);
        else if (step == "refuse")
            actions.refuseWaiting();
        else if (step == "close")
            actions.close();
        const bool isDone = QTest::qWaitFor([this] {
            if (exchange.keptCount() > 0)
                exchange.release();
            return actions.isIdle();
        });
        const QString wait = timer->wait ? QString::number(*timer->wait) : QStringLiteral("-");
        const QString state = QStringLiteral(" %1%2%3 ").arg(messages.currentPlayState());
        return exchange.sent().join('|') + state.arg(messages.currentMessageIndex()).arg(messages.rowOnAir()) +
               (isDone ? wait : QStringLiteral("stuck"));
    }
};

class PlaybackTest : public QObject
{
    Q_OBJECT
private slots:
    void aServerThatDoesNotAnswerIsToldNothing()
    {
        Player f;
        awaited(f.messages.addMessageToCurrentRotation("a", "3"));
        QSignalSpy notes(&f.server.console(), &Console::noteAppended);
        f.exchange.answer("status", ScriptedExchange::failure());
        awaited(f.server.sendCommand("status"));
        QCOMPARE(f.take("start"), " 100 3"); // nothing is sent, and it goes on
        QCOMPARE(notes.size(), 1);
        QVERIFY(notes.first().first().toString().startsWith("skipped") && f.alerts.shown().isEmpty());
        f.exchange.answer("status", ScriptedExchange::ok("fine"));
        awaited(f.server.sendCommand("status"));
        f.preferences.setValue("checkBoxLoopMessages", true);
        QCOMPARE(f.take("timer"), "say \"a\" 100 3");
    }

    void plays_data()
    {
        const auto row = dataColumns<QString, bool, QStringList>("durations", "loops", "steps");
        // steps: what happens, and what is then
        const QString m0 = "start=say \"0\" 100 ";
        const QString m1 = "timer=say \"1\" 111 ";
        row("no rows", "", true, QStringList{"start= 00-1 -"});
        row("end", "3 4", false, QStringList{m0 + '3', m1 + '4', "timer= 01-1 -", "stale= 01-1 -"});
        row("loop", "3 4", true, QStringList{m0 + '3', m1 + '4', "timer=say \"0\" 100 3"});
        row("rows gone, loop", "3 4", true, QStringList{m0 + '3', "clear= 10-1 3", "timer= 10-1 -", "start= 10-1 -"});
        row("rows moved", "3 4", false, QStringList{m0 + '3', "swap= 101 3", "timer=say \"0\" 111 3"});
        row("no number", "x", true, QStringList{m0 + '-', "timer= 100 -", "stop= 00-1 -"});
        row("odd numbers", "7.9 0", false, QStringList{m0 + '7', m1 + '0'});
    }
    void plays()
    {
        QFETCH(QString, durations);
        QFETCH(bool, loops);
        QFETCH(QStringList, steps);
        Player f;
        f.preferences.setValue("checkBoxLoopMessages", loops);
        for (const QString &duration : durations.split(' ', Qt::SkipEmptyParts))
            awaited(f.messages.addMessageToCurrentRotation(QString::number(f.messages.rowCount()), duration));
        for (const QString &step : steps) {
            QCOMPARE(step.section('=', 0, 0) + '=' + f.take(step.section('=', 0, 0)), step);
            const bool isPlaying = f.messages.currentPlayState() == KelMessageRotation::Playing;
            QCOMPARE(f.messages.stopEnabled(), isPlaying);
            QCOMPARE(f.messages.startEnabled(), !isPlaying && f.messages.rowCount() > 0);
        }
    }

    void callsOffWhatWaits_data()
    {
        const auto row = dataColumns<QString>("state");
        row("nothing", "say \"a\" 100 5");
        row("start", "say \"a\" 100 5"); // once
        row("stop", " 00-1 -");
        row("refuse", " 100 5"); // another server: only this message is lost
        row("close", " 100 -");
    }
    void callsOffWhatWaits()
    {
        Player f;
        awaited(f.messages.addMessageToCurrentRotation("a", "5"));
        f.exchange.hold();
        f.messages.setQuickMessageText("q");
        f.messages.sendQuickMessage(); // has the turn
        f.messages.startRotation();
        QTEST(f.take(QTest::currentDataTag()), "state");
        QVERIFY(f.alerts.shown().isEmpty());
    }

    /// Nobody may be there to close it, and only who has a turn finds out that the server is back.
    void anOpenAlertKeepsNobodyWaiting()
    {
        Player f;
        awaited(f.messages.addMessageToCurrentRotation("a", "3"));
        f.alerts.hold();
        f.exchange.answerEverything(ScriptedExchange::failure("gone"));
        f.exchange.answer("say \"q\"", ScriptedExchange::ok());
        f.messages.startRotation();
        QTRY_COMPARE(f.alerts.openCount(), 1);
        f.messages.setQuickMessageText("q");
        f.messages.sendQuickMessage();
        const bool isSent = QTest::qWaitFor([&f] { return f.exchange.sent().last() == "say \"q\""; });
        f.alerts.dismiss();
        QCOMPARE(f.take({}), " 100 3");
        QVERIFY(isSent);
    }

    void quotesAndFailures()
    {
        Player f;
        const RecordedAlerts::Shown alert{"Remote Command Failure", "'Say' returned an error: gone", {}};
        awaited(f.messages.addMessageToCurrentRotation("a \"b\" %1", "0"));
        f.exchange.answerEverything(ScriptedExchange::failure("gone"));
        QCOMPARE(f.take("start"), "say \"a \\\"b\\\" %1\" 100 1"); // one second, in which Stop can be pressed
        f.messages.setQuickMessageText("a \"b\"");
        f.messages.sendQuickMessage();
        QCOMPARE(f.take({}), " 100 1");
        QCOMPARE(f.server.console().commandHistory().last(), "say \"a \"b\"\"");
        QCOMPARE(f.messages.quickMessageText(), QString());
        QCOMPARE(f.alerts.shown(), QList({alert, alert}));
        f.messages.sendQuickMessage(); // an empty one on its own is sent
        QCOMPARE(f.take({}), " 100 1");
        QCOMPARE(f.server.console().commandHistory().last(), "say \"\"");
    }
    void endsWithTheConnection()
    {
        Player f;
        const QSignalSpy buttons(&f.messages, &KelMessageRotation::transportButtonsChanged);
        awaited(f.messages.addEntries({{"a", "5"}, {"b", "5"}}));
        QCOMPARE(f.take("start"), "say \"a\" 100 5");
        f.server.disconnect();
        QCOMPARE(f.take("timer"), " 00-1 -");
        QVERIFY(!f.messages.startEnabled() && !f.messages.stopEnabled());
        QCOMPARE(buttons.last(), QList<QVariant>({false, false}));
        awaited(f.server.connectToHost("192.0.2.1", "50960", "x"));
        QCOMPARE(buttons.last(), QList<QVariant>({true, false}));
        QVERIFY(f.alerts.shown().isEmpty());
    }

    void waitsAsLongAsATimerCan()
    {
        PreciseOneShotTimer timer;
        timer.start(std::numeric_limits<qint64>::max(), [] {});
        QVERIFY(timer.remaining() > std::chrono::hours(24 * 24));
        bool isDone = false;
        timer.start(-1, [&isDone] { isDone = true; });
        QTRY_VERIFY(isDone);
    }
};

QTEST_GUILESS_MAIN(PlaybackTest)
#include "tst_playback.moc"
