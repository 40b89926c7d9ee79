#include "DemoClient.h"
#include "DemoServer.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace std::chrono_literals;

namespace
{
const QByteArray Refusal("\xff\xff\xff\xff\x0a");

QByteArray reply(const QByteArray &text)
{
    return QByteArray("\xff\xff\xff\xff\x01print\n") + text + '\0';
}

std::unique_ptr<DemoServer> started(DemoOptions options = {})
{
    options.frozen = true;
    auto server = std::make_unique<DemoServer>(options);
    QString error;
    if (!server->start(&error))
        qFatal("%s", qPrintable(error));
    return server;
}
} // namespace

class TestDemoServer : public QObject
{
    Q_OBJECT
private slots:
    void answers_data();
    void answers();
    void longRepliesAreCutIntoDatagrams();
    void newPasswordCountsAtOnce();
    void hostileDatagramsAreSurvived_data();
    void hostileDatagramsAreSurvived();
    void floodIsSurvived();
    void silentServerSeesButDoesNothing();
    void everythingCanGetLost();
    void duplicationSendsTwice();
    void reorderingKeepsEveryPart();
    void garbageIsNeverAReply();
    void delayedReplyComesLate();
    void stopIsPrompt_data();
    void stopIsPrompt();
    void startReportsWhy();
    void gameGoesOnByItself();
};

void TestDemoServer::answers_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("refusalText");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("expected");
    const auto say = [](const QByteArray &words) {
        return reply("console: " + words + '\n');
    };
    const QByteArray closed = reply("The server must set 'rcon_password' for clients to use 'rcon'.\n");
    const auto row = [](const char *title, const char *password, bool refusalText, const QByteArray &request,
                        const QByteArray &expected) {
        QTest::newRow(title) << QString::fromUtf8(password) << refusalText << request << expected;
    };
    const auto text = &DemoClient::request;
    row("command", "demo", false, text("demo say hi"), say("hi"));
    row("reply without text", "demo", false, text("demo fast_restart"), reply(""));
    row("no command", "demo", false, text("demo"), reply(""));
    row("blank command", "demo", false, text("demo  "), reply(""));
    row("no closing zero", "demo", false, text("demo say hi").chopped(1), say("hi"));
    row("text behind the zero", "demo", false, text("demo say hi") + "say no", say("hi"));
    row("wrong password", "demo", false, text("domo say hi"), Refusal);
    row("longer word", "demo", false, text("demonstrate say hi"), Refusal);
    row("other case", "demo", false, text("Demo say hi"), Refusal);
    row("nothing at all", "demo", false, text(""), Refusal);
    row("wrong password, in words", "demo", true, text("domo say hi"), reply("Invalid password.\n"));
    row("password of two words", "open sesame", false, text("open sesame say hi"), say("hi"));
    row("first word only", "open sesame", false, text("open say hi"), Refusal);
    row("Latin-1", "caf\u00e9", false,
        text("caf\xe9 say "
             "\xfc"),
        say("\xfc"));
    row("no password set", "", false, text(" say hi"), closed);
    row("no password set, some given", "", true, text("demo say hi"), closed);
}

void TestDemoServer::answers()
{
    QFETCH(QString, password);
    QFETCH(bool, refusalText);
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, expected);
    const auto server = started({.password = password, .refusalText = refusalText});
    const DemoClient client(server->port());
    client.send(request);
    QCOMPARE(client.receive(), std::optional(expected));
    const bool isCarriedOut = expected.startsWith(reply("").first(11)) && !expected.contains("password");
    QCOMPARE(server->commandsSeen().size(), isCarriedOut ? 1 : 0);
}

void TestDemoServer::longRepliesAreCutIntoDatagrams()
{
    const auto server = started();
    const DemoClient client(server->port());
    client.sendText("demo dvardump");
    QByteArray text;
    int count = 0;
    while (!text.endsWith(" total dvars\n")) {
        const auto datagram = client.receive();
        QVERIFY(datagram && datagram->size() <= 1012);
        QCOMPARE(datagram->first(11), reply("").first(11));
        text += datagram->sliced(11).chopped(1);
        ++count;
    }
    QVERIFY(count >= 4);
    QVERIFY(text.contains("sv_hostname \"Harbour Lights | Demo Server\"\n"));
    QCOMPARE(server->commandsSeen(), QStringList{"dvardump"});
}

void TestDemoServer::newPasswordCountsAtOnce()
{
    const auto server = started();
    const DemoClient client(server->port());
    client.sendText("demo setadmindvar rcon_password \"new one\"");
    QCOMPARE(client.receive(), std::optional(reply("")));
    QCOMPARE(server->password(), "new one");
    QCOMPARE(server->variable("rcon_password"), "new one");
    client.sendText("demo say hi");
    QCOMPARE(client.receive(), std::optional(Refusal));
    client.sendText("new one kick all");
    QCOMPARE(client.receive(), std::optional(reply("12 players were kicked\n")));
    QCOMPARE(server->playerCount(), 0);
}

void TestDemoServer::hostileDatagramsAreSurvived_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<bool>("isAnswered");
    const QByteArray head(4, '\xff');
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("one byte") << head.first(1) << false;
    QTest::newRow("head only") << head << false;
    QTest::newRow("head of a reply") << head + "\x01print\nhello" << false;
    QTest::newRow("no head") << QByteArray("demo say hi") << false;
    QTest::newRow("zeros") << QByteArray(1400, '\0') << false;
    QTest::newRow("high bytes") << QByteArray(1400, '\xff') << false;
    QTest::newRow("as large as it gets, wrong password") << DemoClient::request(QByteArray(65'000, '\xff')) << true;
    QTest::newRow("as large as it gets") << DemoClient::request("demo " + QByteArray(65'000, '"')) << true;
    QTest::newRow("long word") << DemoClient::request("demo " + QByteArray(16'000, 'x')) << true;
    QTest::newRow("place markers") << DemoClient::request("demo say %1 %s %n %99") << true;
}

void TestDemoServer::hostileDatagramsAreSurvived()
{
    QFETCH(QByteArray, datagram);
    QFETCH(bool, isAnswered);
    const auto server = started();
    const DemoClient attacker(server->port());
    attacker.send(datagram);
    const DemoClient client(server->port());
    client.sendText("demo say still here");
    QCOMPARE(client.receive(), std::optional(reply("console: still here\n")));
    // The server takes one after the other, so whatever it had to say to the attacker has been sent by now.
    QCOMPARE(attacker.receive(0ms).has_value(), isAnswered);
}

void TestDemoServer::floodIsSurvived()
{
    const auto server = started();
    const DemoClient flooder(server->port());
    for (int i = 0; i < 20'000; ++i)
        flooder.sendText(i % 2 ? "demo dvardump" : "wrong dvardump");
    const DemoClient client(server->port());
    std::optional<QByteArray> answer;
    for (int attempt = 0; attempt < 30 && !answer; ++attempt) { // the system drops what it has no room for
        client.sendText("demo say still here");
        answer = client.receive(500ms);
    }
    QCOMPARE(answer, std::optional(reply("console: still here\n")));
}

void TestDemoServer::silentServerSeesButDoesNothing()
{
    const auto server = started({.faults = {.silent = true}});
    const DemoClient client(server->port());
    client.sendText("demo kick all");
    client.sendText("wrong kick all");
    client.sendText("demo say hi");
    QTRY_COMPARE(server->commandsSeen(), (QStringList{"kick all", "say hi"}));
    QCOMPARE(server->playerCount(), 12);
    server->setFaults({});
    client.sendText("demo say again");
    QCOMPARE(client.receive(), std::optional(reply("console: again\n")));
}

void TestDemoServer::everythingCanGetLost()
{
    const auto server = started({.faults = {.loss = 1}});
    const DemoClient client(server->port());
    client.sendText("demo say hi");
    server->stop();
    QCOMPARE(server->commandsSeen(), QStringList());
    QVERIFY(!client.receive(0ms));
}

void TestDemoServer::duplicationSendsTwice()
{
    const auto server = started({.faults = {.duplication = 1}});
    const DemoClient client(server->port());
    client.sendText("demo say hi");
    QCOMPARE(client.receive(), std::optional(reply("console: hi\n")));
    QCOMPARE(client.receive(), std::optional(reply("console: hi\n")));
}

void TestDemoServer::reorderingKeepsEveryPart()
{
    const auto server = started();
    const DemoClient client(server->port());
    const auto parts = [&](int count) {
        client.sendText("demo dvardump");
        QList<QByteArray> datagrams;
        while (datagrams.size() < count) {
            const auto datagram = client.receive();
            if (!datagram)
                break;
            datagrams.append(*datagram);
        }
        return datagrams;
    };
    int count = 0;
    client.sendText("demo dvardump");
    client.receiveUntil(" total dvars\n", &count);
    QList<QByteArray> inOrder = parts(count);
    server->setFaults({.reorder = true});
    QList<QByteArray> mixed = parts(count);
    QVERIFY(mixed != inOrder);
    std::sort(inOrder.begin(), inOrder.end());
    std::sort(mixed.begin(), mixed.end());
    QCOMPARE(mixed, inOrder);
}

void TestDemoServer::garbageIsNeverAReply()
{
    const auto server = started({.faults = {.garbage = 1}});
    const DemoClient client(server->port());
    QSet<qsizetype> sizes;
    for (int i = 0; i < 100; ++i) {
        client.sendText("demo dvardump");
        const auto datagram = client.receive();
        QVERIFY(datagram);
        const bool isReply = datagram->size() >= 10 && datagram->startsWith(QByteArray("\xff\xff\xff\xff\x01"));
        QVERIFY(!isReply && *datagram != Refusal);
        sizes.insert(datagram->size());
    }
    QVERIFY(sizes.contains(0) && sizes.contains(4000));
}

void TestDemoServer::delayedReplyComesLate()
{
    const auto server = started({.faults = {.delay = 300ms}});
    const DemoClient client(server->port());
    QElapsedTimer timer;
    timer.start();
    client.sendText("demo say hi");
    QCOMPARE(client.receive(), std::optional(reply("console: hi\n")));
    QVERIFY2(timer.elapsed() >= 299, qPrintable(QString::number(timer.elapsed())));
}

void TestDemoServer::stopIsPrompt_data()
{
    QTest::addColumn<bool>("frozen");
    QTest::addColumn<int>("requests");
    QTest::addColumn<std::chrono::milliseconds>("delay");
    QTest::newRow("nothing to do") << true << 0 << 0ms;
    QTest::newRow("time runs") << false << 0 << 0ms;
    QTest::newRow("replies under way") << true << 50 << 60'000ms;
    QTest::newRow("much to do") << false << 5000 << 0ms;
}

void TestDemoServer::stopIsPrompt()
{
    QFETCH(bool, frozen);
    QFETCH(int, requests);
    QFETCH(std::chrono::milliseconds, delay);
    DemoServer server({.frozen = frozen, .faults = {.delay = delay}});
    QVERIFY(server.start());
    const quint16 port = server.port();
    const DemoClient client(port);
    for (int i = 0; i < requests; ++i)
        client.sendText("demo dvardump");
    QElapsedTimer timer;
    timer.start();
    server.stop();
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(server.port(), 0);
    server.stop();
    QVERIFY(server.start());
    const DemoClient newcomer(server.port());
    server.setFaults({});
    newcomer.sendText("demo say hi");
    QCOMPARE(newcomer.receive(), std::optional(reply("console: hi\n")));
}

void TestDemoServer::startReportsWhy()
{
    const auto server = started();
    QString error;
    QVERIFY(!server->start(&error));
    QVERIFY(!error.isEmpty());
    DemoServer second({.port = server->port()});
    error.clear();
    QVERIFY(!second.start(&error));
    QVERIFY2(error.contains(QString::number(server->port())), qPrintable(error));
    QVERIFY(!second.start());
    QCOMPARE(second.port(), 0);
    server->stop();
    QVERIFY(second.start());
}

void TestDemoServer::gameGoesOnByItself()
{
    DemoServer server({});
    QVERIFY(server.start());
    const DemoClient client(server.port());
    const auto list = [&client] {
        client.sendText("demo teamstatus");
        return client.receiveUntil("    0 25000\n");
    };
    const QByteArray before = list();
    QVERIFY(before.contains("democlient"));
    QTRY_VERIFY(list() != before);
}

QTEST_GUILESS_MAIN(TestDemoServer)
#include "tst_demoserver.moc"
