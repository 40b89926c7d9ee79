#include "Controls.h"
#include "DemoServer.h"
#include "RCon.h"
#include "RealConsole.h"

#include <QCoroSignal>
#include <QElapsedTimer>
#include <QTest>

#include <list>

using namespace std::chrono_literals;

/// A console at work, and the game server or line to which something happens.
struct Course : RealConsole {
    explicit Course(const DemoFaults &theFaults) : faults(theFaults) { serve({}); }

    void serve(DemoOptions options)
    {
        options.frozen = true;
        demo = nullptr; // its port is free now
        demo = std::make_unique<DemoServer>(options);
        isServing = demo->start();
    }
    QCoro::Task<> join()
    {
        port = demo->port();
        co_await server.connectToHost("127.0.0.1", QString::number(port), demo->password());
        co_await players.updatePlayerList();
    }
    QCoro::Task<> run()
    {
        co_await join();
        before = shownRows(playersTable);
        demo->setFaults(faults);
        if (event != nullptr)
            event(*this);
        co_await players.updatePlayerList();
        meanwhile = shownRows(playersTable);
        QElapsedTimer timer;
        timer.start();
        const auto listening = QObject::connect(&server.console(), &Console::messageAppended, &server,
                                                [this](const QString &text) { said += text; });
        messages.setQuickMessageText("two");
        messages.sendQuickMessage();
        if (!actions.isIdle()) // an answer may come faster than this line
            co_await qCoro(&actions, &ActionQueue::idle);
        QObject::disconnect(listening);
        milliseconds = timer.elapsed();
        demo->setFaults({});
        isServing = demo->port() != 0 || demo->start();
        if (demo->port() != port || demo->password() != "demo")
            co_await join();
        next = co_await server.sendCommand("say three");
        co_await players.updatePlayerList();
        isDone = true;
    }

    DemoFaults faults;
    void (*event)(Course &) = nullptr;
    std::unique_ptr<DemoServer> demo;
    quint16 port = 0;
    bool isServing = false, isDone = false;
    const QAbstractItemView &playersTable = *control<QAbstractItemView>(players, "playersTableView");
    QList<QStringList> before, meanwhile; ///< the players that it shows
    qint64 milliseconds = 0;
    QString said;
    Reply next;
};

class NetworkFaults : public QObject
{
    Q_OBJECT
private slots:
    void courses_data()
    {
        QTest::addColumn<Course *>("course");
        QTest::addColumn<QString>("error");    // of the message; a star where both outcomes are right
        QTest::addColumn<int>("sends");        // of the message, 0 where chance decides
        QTest::addColumn<bool>("isListWhole"); // every player is there
        const QString late = RCon::resultStr(RConResultTimeout);
        const auto row = [this](const char *name, const DemoFaults &faults, const QString &error, int sends,
                                bool isListWhole, void (*happening)(Course &) = nullptr) {
            Course &course = m_courses.emplace_back(faults);
            course.event = happening;
            QTest::newRow(name) << &course << error << sends << isListWhole;
        };
        row("loss 30 %", {.loss = 0.3}, "*", 0, false);
        row("loss 60 %", {.loss = 0.6}, "*", 0, false);
        row("duplication", {.duplication = 1}, "", 1, true);
        row("reordering", {.reorder = true}, "", 1, false);
        row("all at once", {.loss = 0.2, .duplication = 0.5, .reorder = true, .delay = 100ms}, "*", 0, false);
        row("delay below the first wait", {.delay = 400ms}, "", 1, true);
        row("delay above the first wait", {.delay = 550ms}, "", 1, true); // the refresh before has learnt it
        row("delay below all waits", {.delay = 2900ms}, "", 1, true);
        row("delay above all waits", {.delay = 3400ms}, late, 3, true);
        row("silence after the first datagram", {.silentAfter = 1}, "", 1, false);
        row("silence", {.silent = true}, late, 3, true);
        row("garbage", {.garbage = 1}, "*", 1, true);
        row("reply from another port", {.otherPort = true}, "", 1, true);
        row("restart", {}, "", 1, true, [](Course &c) { c.serve({.port = c.port}); });
        row("restart with another password", {}, RCon::resultStr(RConResultInvalidPassword), 0, true,
            [](Course &c) { c.serve({.port = c.port, .password = "new"}); });
        row("nothing at the port", {}, late, 0, true, [](Course &c) { c.demo->stop(); });
        row("moved to another port", {}, late, 0, true, [](Course &c) {
            const std::unique_ptr<DemoServer> old = std::move(c.demo); // holds its port a moment longer
            c.serve({.players = 5});
        });
        std::list<QCoro::Task<>> tasks; // side by side
        for (Course &course : m_courses)
            tasks.push_back(course.run());
        const auto areDone = [this] {
            return std::all_of(m_courses.begin(), m_courses.end(), [](const Course &c) { return c.isDone; });
        };
        QVERIFY(QTest::qWaitFor(areDone, 60'000));
    }
    void courses()
    {
        QFETCH(Course *, course);
        QFETCH(QString, error);
        QFETCH(int, sends);
        QFETCH(bool, isListWhole);
        const Course &c = *course;
        QVERIFY(c.isServing && !c.before.isEmpty());
        for (const QStringList &player : c.meanwhile)
            QVERIFY2(c.before.contains(player), qPrintable(player.join(' '))); // none is wrong
        QVERIFY(!isListWhole || c.meanwhile == c.before);
        // The reply to this command as often as it came, or one alert.
        QString said = c.said;
        if (said.startsWith('\n')) // what came of the list before broke off in a line
            said.remove(0, 1);
        QVERIFY(said.startsWith("] say \"two\"\n"));
        said.remove(0, 12).remove("tower: two\n");
        if (said.endsWith('\n')) // a failure is a line of its own
            said.chop(1);
        QCOMPARE(said, error == "*" ? said : error);
        const RecordedAlerts::Shown alert{"Remote Command Failure", "'Say' returned an error: " + said, {}};
        QCOMPARE(c.alerts.shown(), QList<RecordedAlerts::Shown>(said.isEmpty() ? 0 : 1, alert));
        QVERIFY(sends == 0 || c.demo->commandsSeen().count("say \"two\"") == sends);
        QVERIFY2(c.milliseconds < (said.isEmpty() ? 5500 : 4750), QByteArray::number(c.milliseconds));
        // What comes late belongs to no later exchange.
        QCOMPARE(c.next.text, "tower: three\n");
        QCOMPARE(c.playersTable.model()->rowCount(), c.demo->playerCount());
    }

private:
    std::list<Course> m_courses;
};

QTEST_MAIN(NetworkFaults)
#include "tst_networkfaults.moc"
