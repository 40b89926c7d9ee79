#include "RCon.h"
#include "ScriptedPeer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <map>
#include <memory>
#include <string>

using namespace std::chrono_literals;

namespace
{

using Answer = ScriptedPeer::Answer;
using Road = decltype(&RCon::sendTo);

const auto framed = &ScriptedPeer::framed;
const QString timeOutText = QStringLiteral(
    "A connection attempt failed because the connected party did not properly respond after a period of time, or "
    "established a connection failed because connected host has failed to respond.");

struct Outcome {
    RConResult result = RConResultSuccess;
    QString text;
    qint64 milliseconds = 0;
};

Outcome exchange(Road road, int port, const std::stop_token &stop = {})
{
    QElapsedTimer timer;
    timer.start();
    Outcome outcome;
    outcome.result = road("127.0.0.1", port, "secret", "status %1 all", &outcome.text, stop);
    outcome.milliseconds = timer.elapsed();
    return outcome;
}

/// An exchange that waits for time-outs; all of them run side by side.
struct SlowCase {
    SlowCase(Road way, QList<Answer> script) : road(way), peer(std::move(script)) {}

    Road road;
    ScriptedPeer peer;
    std::stop_source source;
    std::future<Outcome> future;
    Outcome outcome;
    qint64 stopMilliseconds = 0;
};

} // namespace

class TransportTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(m_folder.isValid() && QDir::setCurrent(m_folder.path()));
        QFile log("log.txt");
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.close();
        qputenv("FerrowRconLog", "1");
        qputenv("TZ", "TEST+03:30"); // west of Greenwich, and not by whole hours

        const Answer good{{framed("good")}};
        addSlowCase("silent", &RCon::sendTo, {});
        addSlowCase("second answered", &RCon::sendTo, {{}, good});
        addSlowCase("single, third answered", &RCon::sendSingleTo, {{}, {}, good});
        addSlowCase("split, one doubled", &RCon::sendTo,
                    {{{framed("a\\")}, {framed("n^")}, {framed("n^")}, {framed("1b"), 100ms}}});
        addSlowCase("cancelled read", &RCon::sendTo, {});
        addSlowCase("cancelled drip", &RCon::sendTo, {{{framed("x"), 20ms, 60'000}}});
        addSlowCase("cancelled pause", &RCon::sendTo, {});
        stopAtRequest("cancelled read", 1);
        stopAtRequest("cancelled drip", 1);
        stopAtRequest("cancelled pause", 3);
        for (const auto &[name, slow] : m_slowCases) {
            if (slow->future.valid())
                slow->outcome = slow->future.get();
        }
    }

    void slowCases_data()
    {
        QTest::addColumn<unsigned>("result");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("leastMilliseconds");
        QTest::addColumn<QStringList>("log");
        const unsigned good = RConResultSuccess;
        const unsigned late = RConResultTimeout;
        const QString lateResult = " Res(%1): " + timeOutText;
        const auto lost = [&](int attempt) -> QString {
            return " " + lateResult.arg(attempt);
        };

        QTest::newRow("silent") << late << timeOutText << 3250
                                << QStringList{" Send(1): status %1 all", lost(1) + " numPackets=0",
                                               " Send(2): status %1 all", lost(2) + " numPackets=0",
                                               " Send(3): status %1 all", lost(3) + " numPackets=0"};
        QTest::newRow("second answered") << good << "good" << 1750
                                         << QStringList{" Send(1): status %1 all", lost(1) + " numPackets=0",
                                                        " Send(2): status %1 all",
                                                        "  Res(2): RConResultSuccess numPackets=1"};
        QTest::newRow("single, third answered")
            << good << "good" << 2500 << QStringList{" SendSingle(1): status %1 all", lost(1) + "@",
                                                     " SendSingle(2): status %1 all", lost(2),
                                                     " SendSingle(3): status %1 all", "  Res(3): RConResultSuccess"};
        // Each datagram is cleaned by itself, so what is split over two stays.
        QTest::newRow("split, one doubled")
            << good << "a\\n^n^1b" << 600
            << QStringList{" Send(1): status %1 all", "  Res(1): RConResultSuccess numPackets=4"};
    }
    void slowCases()
    {
        SlowCase &slow = *m_slowCases.at(QTest::currentDataTag());
        QTEST(unsigned(slow.outcome.result), "result");
        QTEST(slow.outcome.text, "text");
        QFETCH(QStringList, log);
        const QString place = QStringLiteral("(127.0.0.1:%1)").arg(slow.peer.port());
        for (QString &line : log)
            line.prepend(place);
        QCOMPARE(logLines(slow.peer.port()), log);

        QFETCH(int, leastMilliseconds);
        const qint64 took = slow.outcome.milliseconds;
        QVERIFY2(took >= leastMilliseconds - 50 && took < leastMilliseconds + 5000, QByteArray::number(took));
        const QByteArray request = QByteArray::fromHex("ffffffff00") + "secret status %1 all" + QByteArray(1, '\0');
        QCOMPARE(slow.peer.requests(), QList<QByteArray>(log.filter("Send").size(), request));
    }

    void cancelled_data()
    {
        QTest::addColumn<int>("requests");
        QTest::addColumn<int>("mostMilliseconds");
        // Uncancelled, the first would go on for 3.25 s, the second for 20 minutes, the
        // third for 1.5 s.
        QTest::newRow("cancelled read") << 1 << 2000;
        QTest::newRow("cancelled drip") << 1 << 2000;
        QTest::newRow("cancelled pause") << 3 << 700;
    }
    void cancelled()
    {
        SlowCase &slow = *m_slowCases.at(QTest::currentDataTag());
        QFETCH(int, requests);
        QFETCH(int, mostMilliseconds);
        QCOMPARE(slow.outcome.result, RConResultError);
        QCOMPARE(slow.outcome.text, "RConResultError");
        QVERIFY2(slow.stopMilliseconds < mostMilliseconds, QByteArray::number(slow.stopMilliseconds));
        QCOMPARE(slow.peer.requests().size(), requests);
        const QStringList lines = logLines(slow.peer.port());
        QCOMPARE(lines.size(), 2 * requests - 1);
        QVERIFY2(lines.last().contains("Send("), qPrintable(lines.last()));
    }

    void cancelledBeforehand()
    {
        ScriptedPeer peer({});
        std::stop_source source;
        source.request_stop();
        for (const Road road : {&RCon::sendTo, &RCon::sendSingleTo}) {
            const Outcome outcome = exchange(road, peer.port(), source.get_token());
            QCOMPARE(outcome.result, RConResultError);
            QCOMPARE(outcome.text, "RConResultError");
        }
        QCOMPARE(peer.requests().size(), 0);
        QCOMPARE(logLines(peer.port()), QStringList());
    }

    void noRetry_data()
    {
        QTest::addColumn<QByteArray>("datagram");
        QTest::addColumn<unsigned>("result");
        QTest::addColumn<QString>("text");
        QTest::newRow("refused") << QByteArray::fromHex("ffffffff0a") << unsigned(RConResultInvalidPassword)
                                 << "Invalid Password.";
        QTest::newRow("garbage") << QByteArray("garbage") << unsigned(RConResultInvalidPacket)
                                 << "RConResultInvalidPacket";
        QTest::newRow("empty") << QByteArray() << unsigned(RConResultNullReply) << "RConResultNullReply";
    }
    void noRetry()
    {
        QFETCH(QByteArray, datagram);
        QFETCH(QString, text);
        ScriptedPeer peer({{{datagram}}, {{datagram}}});
        for (const Road road : {&RCon::sendTo, &RCon::sendSingleTo}) {
            const Outcome outcome = exchange(road, peer.port());
            QTEST(unsigned(outcome.result), "result");
            QCOMPARE(outcome.text, text);
        }
        QCOMPARE(peer.requests().size(), 2);
        const QString place = QStringLiteral("(127.0.0.1:%1)").arg(peer.port());
        QCOMPARE(logLines(peer.port()),
                 QStringList({place + " Send(1): status %1 all", place + "  Res(1): " + text + " numPackets=0",
                              place + " SendSingle(1): status %1 all", place + "  Res(1): " + text + "@"}));
    }

    void badHosts()
    {
        QFile log("log.txt");
        const qint64 before = log.size();
        QString text;
        QCOMPARE(RCon::sendTo("localhost", 1, "secret", "status", &text), RConResultError);
        QCOMPARE(text, "No such host is known.");
        QCOMPARE(log.size(), before);
    }

    void passwordsStayOutOfTheLog_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("logged");
        QTest::newRow("written") << "setadmindvar rcon_password \"a b\""
                                 << "setadmindvar rcon_password ***";
        QTest::newRow("typed") << "  G_Password x"
                               << "  G_Password ***";
        QTest::newRow("asked for") << "rcon_password"
                                   << "rcon_password";
        QTest::newRow("talked about") << "say the password is out"
                                      << "say the password is out";
    }
    void passwordsStayOutOfTheLog()
    {
        QFETCH(QString, command);
        ScriptedPeer peer({{{framed("good")}}});
        QCOMPARE(RCon::sendSingleTo("127.0.0.1", peer.port(), "secret", command), RConResultSuccess);
        QTEST(logLines(peer.port()).first().section(" SendSingle(1): ", 1), "logged");
    }

    void loggingOff_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("hasFile");
        QTest::newRow("unset") << QByteArray() << true;
        QTest::newRow("zero") << QByteArray("0") << true;
        QTest::newRow("no file") << QByteArray("1") << false;
    }
    void loggingOff()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, hasFile);
        QTemporaryDir folder;
        QVERIFY(QDir::setCurrent(folder.path()));
        const auto back = qScopeGuard([this] {
            qputenv("FerrowRconLog", "1");
            QVERIFY(QDir::setCurrent(m_folder.path()));
        });
        QFile file("log.txt");
        if (hasFile)
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write("kept\n") == 5 && file.flush());
        if (value.isEmpty())
            qunsetenv("FerrowRconLog");
        else
            qputenv("FerrowRconLog", value);

        ScriptedPeer peer({{{framed("good")}}});
        QCOMPARE(exchange(&RCon::sendSingleTo, peer.port()).text, "good");
        QCOMPARE(file.exists(), hasFile);
        QCOMPARE(file.size(), hasFile ? 5 : 0);
    }

private:
    void addSlowCase(const std::string &name, Road road, QList<Answer> script)
    {
        auto added = std::make_unique<SlowCase>(road, std::move(script));
        SlowCase *const slow = added.get();
        slow->future = std::async(std::launch::async,
                                  [slow] { return exchange(slow->road, slow->peer.port(), slow->source.get_token()); });
        m_slowCases[name] = std::move(added);
    }

    void stopAtRequest(const std::string &name, qsizetype request)
    {
        SlowCase &slow = *m_slowCases.at(name);
        QVERIFY(slow.peer.waitForRequests(request));
        QElapsedTimer sinceStop;
        sinceStop.start();
        slow.source.request_stop();
        slow.outcome = slow.future.get();
        slow.stopMilliseconds = sinceStop.elapsed();
    }

    /// The lines of the exchanges with `port`; each begins with a date, which is checked and taken off.
    QStringList logLines(int port) const
    {
        QFile file(m_folder.filePath("log.txt"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        static const QRegularExpression line(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d -0330 (\(127\.0\.0\.1:(\d+)\) .*)$)");
        QStringList lines;
        const QStringList all = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
        for (const QString &text : all) {
            const QRegularExpressionMatch match = line.match(text);
            if (!match.hasMatch())
                lines.append("unexpected: " + text);
            else if (match.captured(2).toInt() == port)
                lines.append(match.captured(1));
        }
        return lines;
    }

    QTemporaryDir m_folder;
    std::map<std::string, std::unique_ptr<SlowCase>> m_slowCases;
};

QTEST_GUILESS_MAIN(TransportTest)
#include "tst_transport.moc"
