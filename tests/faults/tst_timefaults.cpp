#include "Controls.h"
#include "RealConsole.h"
#include "Wait.h"

#include <QCheckBox>
#include <QDateTime>
#include <QElapsedTimer>
#include <QProcess>
#include <QSpinBox>
#include <QTest>

#include <atomic>
#include <list>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

static std::atomic<time_t> jumped = 0;

// The clock on the wall as this program sees it. These stand before those of the C library, for Qt as well.
extern "C" {
int clock_gettime(clockid_t clock, timespec *now) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, now);
    now->tv_sec += clock == CLOCK_REALTIME ? jumped.load() : 0;
    return static_cast<int>(result);
}
int gettimeofday(timeval *now, void *) noexcept
{
    timespec precise{};
    const int result = clock_gettime(CLOCK_REALTIME, &precise);
    *now = {precise.tv_sec, precise.tv_nsec / 1000};
    return result;
}
}

/// How long an exchange with nobody takes, in milliseconds; negative when it does not end as it should.
struct TimeOut {
    QCoro::Task<> run()
    {
        QElapsedTimer timer;
        timer.start();
        const Request request{"127.0.0.1", 1, "demo", "status", false, false};
        const Reply reply = co_await exchange.send(request);
        took = reply.result == RConResultTimeout ? timer.elapsed() : -1;
        isOver = true;
    }

    RConExchange exchange;
    qint64 took = 0;
    bool isOver = false;
};

class TimeFaults : public QObject
{
    Q_OBJECT
private slots:
    /// A message and a refresh every second; what happens to the time comes while a message is on its way.
    void nothingHangsOrComesEarly_data()
    {
        QProcess demo; // a process of its own, so that it goes on while this one is stopped
        demo.start(FERROW_DEMO_SERVER, {"--frozen"});
        QVERIFY(QTest::qWaitFor([&demo] { return demo.canReadLine(); }));
        RealConsole c;
        awaited(c.server.connectToHost("127.0.0.1", demo.readLine().trimmed().split(':').last(), "demo"));
        c.preferences.setValue("checkBoxLoopMessages", true);
        awaited(c.messages.addMessageToCurrentRotation("a", "1"));
        auto *refreshing = control<QCheckBox>(c.players, "autoUpdatePlayers");
        control<QSpinBox>(c.players, "autoUpdatePlayersTime")->setValue(1);
        refreshing->setChecked(true);
        QElapsedTimer timer;
        timer.start();
        QString transcript;
        QHash<QString, QList<qint64>> sent; // when, by what the transcript shows
        connect(&c.server.console(), &Console::messageAppended, &c.server, [&](const QString &text) {
            transcript += text;
            sent[text].append(timer.elapsed());
        });
        c.messages.startRotation();
        QTest::addColumn<qint64>("distance");
        QTest::addColumn<qint64>("timeOut");
        std::list<TimeOut> timeOuts;
        std::list<QCoro::Task<>> running;
        const QList<const char *> events{"a day on", "two days back", "stopped for two seconds", "after that"};
        for (const char *event : events) {
            QVERIFY(QTest::qWaitFor([&] { return sent[Say].size() > qsizetype(timeOuts.size()); }, 20'000));
            timeOuts.emplace_back();
            running.push_back(timeOuts.back().run());
            const qint64 before = QDateTime::currentSecsSinceEpoch();
            const qint64 jump = event == events.at(0) ? Day : event == events.at(1) ? -2 * Day : 0;
            jumped += jump;
            QVERIFY(qAbs(QDateTime::currentSecsSinceEpoch() - before - jump) < 60); // Qt sees it
            if (event == events.at(2)) {
                QProcess waker;
                waker.start("sh", {"-c", "kill -STOP $PPID; sleep 2; kill -CONT $PPID"});
                QVERIFY(waker.waitForFinished());
            }
        }
        QVERIFY(QTest::qWaitFor([&] { return sent[Say].size() > events.size(); }, 20'000));
        QVERIFY(QTest::qWaitFor([&timeOuts] { return timeOuts.back().isOver; }, 20'000));
        c.messages.stopRotation();
        refreshing->setChecked(false);
        QVERIFY(QTest::qWaitFor([&c] { return c.actions.isIdle(); }));
        QCOMPARE(c.alerts.titles() + QStringList(transcript.count(Say + "tower: a\n"), {}),
                 QStringList(sent[Say].size(), {})); // each has its own reply
        qsizetype row = 0;
        for (const TimeOut &timeOut : timeOuts) {
            QTest::newRow(events.at(row)) << sent[Say].value(row + 1) - sent[Say].at(row) << timeOut.took;
            ++row;
        }
        const QList<qint64> refreshes = sent["] teamstatus\n"];
        for (qsizetype i = 1; i < refreshes.size(); ++i)
            QVERIFY2(refreshes.at(i) - refreshes.at(i - 1) > 900, QByteArray::number(i)); // no burst
        QVERIFY(refreshes.size() > 2);
        demo.terminate();
        QVERIFY(demo.waitForFinished());
    }
    void nothingHangsOrComesEarly()
    {
        QFETCH(qint64, distance);
        QFETCH(qint64, timeOut);
        // A reply ends by half a second of silence, then its second begins; a refresh may have the turn before it.
        QVERIFY2(distance > 1400 && distance < 5000, QByteArray::number(distance));
        QVERIFY2(timeOut > 3200 && timeOut < 7000, QByteArray::number(timeOut));
    }

private:
    static constexpr time_t Day = 24 * 60 * 60;
    const QString Say = "] say \"a\"\n";
};

QTEST_MAIN(TimeFaults)
#include "tst_timefaults.moc"
