#include "DemoServer.h"
#include "RCon.h"
#include "RealConsole.h"

#include <QCoroSignal>
#include <QElapsedTimer>
#include <QTest>

#include <map>

using namespace std::chrono_literals;

/// A console at work, and the game server or line to which something happens.
struct Course : RealConsole {
    using Event = void (*)(Course &);

    Course(const DemoFaults &theFaults, Event theEvent) : faults(theFaults), event(theEvent) { startServer({}); }

    void startServer(DemoOptions options)
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
    static QCoro::Task<> run(Course *c)
    {
        co_await c->join();
        c->before = c->players.playersController->content();
        c->demo->setFaults(c->faults);
        if (c->event != nullptr)
            c->event(*c);
        co_await c->players.updatePlayerList();
        c->meanwhile = c->players.playersController->content();
        QObject::connect(&c->server, &KelServer::consoleMessageAppended, &c->server,
                         [c](const QString &text) { c->said += text; });
        c->timer.start();
        c->messages.setQuickMessageText("two");
        c->messages.sendQuickMessage();
        if (!c->actions.isIdle()) // an answer may come faster than this line
            co_await qCoro(&c->actions, &ActionQueue::idle);
        c->milliseconds = c->timer.elapsed();
        QObject::disconnect(&c->server, &KelServer::consoleMessageAppended, &c->server, nullptr);
        c->demo->setFaults({});
        c->isServing = c->demo->port() != 0 || c->demo->start();
        if (c->demo->port() != c->port || c->demo->password() != "demo")
            co_await c->join();
        c->next = co_await c->server.sendCommand("say three");
        co_await c->players.updatePlayerList();
        c->isDone = true;
    }

    DemoFaults faults;
    Event event;
    std::unique_ptr<DemoServer> demo;
    quint16 port = 0;
    bool isServing = false;
    bool isDone = false;
    QList<PlayerRow> before;
    QList<PlayerRow> meanwhile;
    QElapsedTimer timer;
    qint64 milliseconds = 0;
    QString said;
    Reply next;
};

class NetworkFaults : public QObject
{
    Q_OBJECT
private slots:
    /// All courses run side by side.
    void initTestCase()
    {
        const auto restart = [](Course &c) {
            c.demo->stop();
            c.isServing = c.demo->start();
        };
        add("loss 30 %", {.loss = 0.3});
        add("loss 60 %", {.loss = 0.6});
        add("duplication", {.duplication = 1});
        add("reordering", {.reorder = true});
        add("all at once", {.loss = 0.2, .duplication = 0.5, .reorder = true, .delay = 100ms});
        add("delay below the first wait", {.delay = 400ms});
        add("delay above the first wait", {.delay = 550ms});
        add("delay below all waits", {.delay = 2900ms});
        add("delay above all waits", {.delay = 3400ms});
        add("silence after the first datagram", {.silentAfter = 1});
        add("silence", {.silent = true});
        add("garbage", {.garbage = 1});
        add("reply from another port", {.otherPort = true});
        add("restart", {}, restart);
        add("restart with another password", {}, [](Course &c) { c.startServer({.port = c.port, .password = "new"}); });
        add("nothing at the port", {}, [](Course &c) { c.demo->stop(); });
        add("moved to another port", {}, [](Course &c) {
            const std::unique_ptr<DemoServer> old = std::move(c.demo); // holds its port a moment longer
            c.startServer({.players = 5});
        });
        for (auto &[name, course] : m_courses)
            m_tasks.push_back(Course::run(course.get()));
        const auto areDone = [this] {
            return std::all_of(m_courses.begin(), m_courses.end(), [](const auto &c) { return c.second->isDone; });
        };
        QVERIFY(QTest::qWaitFor(areDone, 60'000));
    }

    void courses_data()
    {
        QTest::addColumn<QString>("error"); // of the message; a star where both outcomes are right
        QTest::addColumn<int>("sends");
        QTest::addColumn<bool>("isListWhole"); // every row there, and none changed
        const QString late = RCon::resultStr(RConResultTimeout);
        const auto row = [](const char *name, const QString &error, int sends, bool isListWhole) {
            QTest::newRow(name) << error << sends << isListWhole;
        };
        row("loss 30 %", "*", 0, false);
        row("loss 60 %", "*", 0, false);
        row("duplication", {}, 1, true);
        row("reordering", {}, 1, false);
        row("all at once", "*", 0, false);
        row("delay below the first wait", {}, 1, true);
        row("delay above the first wait", {}, 2, true);
        row("delay below all waits", {}, 3, true);
        row("delay above all waits", late, 3, true);
        row("silence after the first datagram", {}, 1, false);
        row("silence", late, 3, true);
        row("garbage", "*", 1, true);
        row("reply from another port", {}, 1, true);
        row("restart", {}, 1, true);
        row("restart with another password", RCon::resultStr(RConResultInvalidPassword), 0, true);
        row("nothing at the port", late, 0, true);
        row("moved to another port", late, 0, true);
    }
    void courses()
    {
        const Course &c = *m_courses.at(QTest::currentDataTag());
        QFETCH(QString, error);
        QFETCH(int, sends);
        QFETCH(bool, isListWhole);
        QVERIFY(c.isServing && !c.before.isEmpty());
        for (const PlayerRow &player : c.meanwhile)
            QVERIFY2(c.before.contains(player), qPrintable(player.name)); // none is wrong
        QVERIFY(!isListWhole || c.meanwhile == c.before);
        // The reply to this command as often as it came, or one alert.
        QString said = c.said;
        QVERIFY(said.startsWith("] say \"two\"\n"));
        said.remove(0, 12).remove("console: two\n");
        if (error == "*")
            error = said;
        QCOMPARE(said, error);
        const RecordedAlerts::Shown alert{"Remote Command Failure", "'Say' returned an error: " + error, {}};
        QCOMPARE(c.alerts.shown(), QList<RecordedAlerts::Shown>(error.isEmpty() ? 0 : 1, alert));
        const QStringList seen = c.demo->commandsSeen();
        QVERIFY2(sends == 0 || seen.count("say \"two\"") == sends, qPrintable(seen.join(u'|')));
        QVERIFY2(c.milliseconds < (error.isEmpty() ? 5500 : 3250 + 1500), QByteArray::number(c.milliseconds));
        // What comes late belongs to no later exchange.
        QCOMPARE(c.next.text, "console: three\n");
        QCOMPARE(c.players.playersController->rowCount(), c.demo->playerCount());
    }

private:
    void add(const std::string &name, const DemoFaults &faults, Course::Event happening = nullptr)
    {
        m_courses[name] = std::make_unique<Course>(faults, happening);
    }

    std::map<std::string, std::unique_ptr<Course>> m_courses;
    std::vector<QCoro::Task<>> m_tasks;
};

QTEST_MAIN(NetworkFaults)
#include "tst_networkfaults.moc"
