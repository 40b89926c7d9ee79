#include "DemoDescriptor.h"
#include "DemoServer.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>

#include <poll.h>

#include <netinet/in.h>
#include <sys/socket.h>

using namespace std::chrono_literals;

namespace
{
const QByteArray Refusal("\xff\xff\xff\xff\x0a");

QByteArray reply(const QByteArray &text)
{
    return QByteArray("\xff\xff\xff\xff\x01print\n") + text + '\0';
}

QByteArray request(const QByteArray &text)
{
    return QByteArray(4, '\xff').append('\0').append(text).append('\0');
}

sockaddr_in loopback(in_addr_t host, quint16 port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(host);
    return address;
}

/// A bare socket that talks to a server on loopback, and hears whoever speaks to it.
struct Client {
    explicit Client(quint16 port, in_addr_t ownHost = INADDR_LOOPBACK)
        : socket(::socket(AF_INET, SOCK_DGRAM, 0)), server(loopback(INADDR_LOOPBACK, port))
    {
        const sockaddr_in own = loopback(ownHost, 0);
        if (::bind(socket.get(), reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0)
            qFatal("no socket");
    }

    void send(const QByteArray &datagram) const
    {
        if (::sendto(socket.get(), datagram.constData(), static_cast<std::size_t>(datagram.size()), 0,
                     reinterpret_cast<const sockaddr *>(&server), sizeof server) < 0)
            qWarning("not sent");
    }

    QByteArray receive(in_addr_t *from = nullptr) const
    {
        pollfd waitedFor{socket.get(), POLLIN, 0};
        if (::poll(&waitedFor, 1, 5000) != 1)
            return "nothing came";
        QByteArray bytes(65'536, Qt::Uninitialized);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        const ssize_t size = ::recvfrom(socket.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0,
                                        reinterpret_cast<sockaddr *>(&address), &length);
        if (from)
            *from = ntohl(address.sin_addr.s_addr);
        return bytes.first(std::max<ssize_t>(size, 0));
    }

    QByteArray ask(const QByteArray &text) const
    {
        send(request(text));
        return receive();
    }

    DemoDescriptor socket;
    sockaddr_in server;
};

/// A server whose time stands still, and a client of it.
struct Line {
    explicit Line(DemoOptions options = {}) : server((options.frozen = true, options)), client(portOf(server)) {}

    static quint16 portOf(DemoServer &server) { return server.start() ? server.port() : 0; }

    DemoServer server;
    Client client;
};
} // namespace

class TestDemoServer : public QObject
{
    Q_OBJECT
private slots:
    void answers_data()
    {
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("refusalText");
        QTest::addColumn<QByteArray>("datagram");
        QTest::addColumn<QByteArray>("expected");
        const auto row = [](const char *title, const char *password, bool refusalText, const QByteArray &datagram,
                            const QByteArray &expected) {
            QTest::newRow(title) << QString::fromUtf8(password) << refusalText << datagram << expected;
        };
        const QByteArray closed = reply("The server must set 'rcon_password' for clients to use 'rcon'.\n");
        row("reply without text", "demo", false, request("demo fast_restart"), reply(""));
        row("no command", "demo", false, request("demo"), reply(""));
        row("no closing zero", "demo", false, request("demo say hi").chopped(1), reply("console: hi\n"));
        row("longer word", "demo", false, request("demonstrate say hi"), Refusal);
        row("wrong password, in words", "demo", true, request("Demo say hi"), reply("Invalid password.\n"));
        row("two words, Latin-1", "caf\u00e9 b", false, request("caf\xe9 b say \xfc"), reply("console: \xfc\n"));
        row("no password set", "", false, request(" say hi"), closed);
    }
    void answers()
    {
        QFETCH(QString, password);
        QFETCH(bool, refusalText);
        QFETCH(QByteArray, datagram);
        Line line({.password = password, .refusalText = refusalText});
        line.client.send(datagram);
        QTEST(line.client.receive(), "expected");
    }

    void newPasswordCountsAtOnce()
    {
        Line line;
        QCOMPARE(line.client.ask("demo setadmindvar rcon_password \"new one\""), reply(""));
        QCOMPARE(line.client.ask("demo say hi"), Refusal);
        QCOMPARE(line.client.ask("new one kick all"), reply("12 players were kicked\n"));
        QCOMPARE(line.server.commandsSeen().size(), 2); // the refused one is not carried out
    }

    void hostileDatagramsAreSurvived()
    {
        Line line;
        const QByteArray head(4, '\xff');
        for (const QByteArray &datagram : {QByteArray(), head, QByteArray("demo say hi"), head.repeated(350)})
            line.client.send(datagram);
        QCOMPARE(line.client.ask("demo say still here"), reply("console: still here\n"));
        QCOMPARE(line.server.commandsSeen(), QStringList{"say still here"});
        const QByteArray large = request("demo " + QByteArray(60'000, '"'));
        for (int i = 0; i < 20'000; ++i)
            line.client.send(large);
        const Client client(line.server.port());
        QTRY_COMPARE(client.ask("demo say still here"), reply("console: still here\n")); // the system drops some
    }

    void longRepliesAreCutAndReordered()
    {
        Line line;
        QList<QByteArray> parts{line.client.ask("demo dvardump")};
        while (!parts.last().endsWith(QByteArray(" total dvars\n").append('\0')))
            parts.append(line.client.receive());
        QVERIFY(parts.size() >= 4);
        for (const QByteArray &part : parts)
            QVERIFY(part.size() <= 1012 && part.startsWith(reply("").chopped(1)));
        line.server.setFaults({.reorder = true});
        QList<QByteArray> mixed{line.client.ask("demo dvardump")};
        while (mixed.size() < parts.size())
            mixed.append(line.client.receive());
        QVERIFY(mixed != parts);
        std::sort(parts.begin(), parts.end());
        std::sort(mixed.begin(), mixed.end());
        QCOMPARE(mixed, parts);
    }

    void hasteIsIgnored()
    {
        Line line({.faults = {.throttle = 60s}});
        QCOMPARE(line.client.ask("demo say one"), reply("console: one\n"));
        line.client.send(request("demo kick all"));
        QCOMPARE(Client(line.server.port()).ask("wrong say two"), Refusal); // whatever the distance
        QCOMPARE(line.server.playerCount(), 12);
        QCOMPARE(line.server.commandsSeen(), QStringList{"say one"});
        line.server.setFaults({});
        QCOMPARE(line.client.ask("demo say three"), reply("console: three\n"));
    }

    void manyRequestsLockOut()
    {
        Line line({.faults = {.lockout = 3}});
        for (int i = 0; i < 3; ++i)
            QCOMPARE(line.client.ask("wrong"), Refusal);
        Client(line.server.port()).send(request("demo kick all")); // another port is no other client
        line.client.send(request("wrong"));
        // Not locked out, so that it tells when the server is through with those before.
        QCOMPARE(Client(line.server.port(), INADDR_LOOPBACK + 2).ask("demo say hi"), reply("console: hi\n"));
        QCOMPARE(line.server.commandsSeen(), QStringList{"say hi"});
        line.server.setFaults({});
        QCOMPARE(line.client.ask("demo say hi"), reply("console: hi\n")); // and nothing was waiting before it
    }

    void aStrangerSpeaksFirst()
    {
        Line line({.faults = {.stranger = true}});
        line.client.send(request("demo say hi"));
        in_addr_t from = 0;
        const QByteArray lie = line.client.receive(&from);
        QVERIFY(lie.startsWith(reply("").chopped(1)) && !lie.contains("console: hi"));
        QCOMPARE(from, DemoSockets::StrangerAddress);
        QCOMPARE(line.client.receive(&from), reply("console: hi\n"));
        QCOMPARE(from, in_addr_t(INADDR_LOOPBACK));
    }

    void partsComeApart()
    {
        Line line({.faults = {.gap = 60s}});
        const QByteArray first = line.client.ask("demo dvardump");
        QVERIFY(first.size() > 1000);
        QCOMPARE(line.client.ask("demo say hi"), reply("console: hi\n")); // before the second part
    }

    void restartsWithAnotherMode_data()
    {
        QTest::addColumn<DemoMode>("mode");
        QTest::addColumn<QString>("ranked");
        QTest::addColumn<QString>("playlists");
        QTest::newRow("unranked") << DemoMode::Unranked << "0"
                                  << "0";
        QTest::newRow("playlists") << DemoMode::Playlists << "0"
                                   << "1";
        QTest::newRow("ranked") << DemoMode::Ranked << "2"
                                << "0";
    }
    void restartsWithAnotherMode()
    {
        QFETCH(DemoMode, mode);
        const bool isRankedBefore = mode != DemoMode::Ranked;
        Line line({.ranked = isRankedBefore, .restartAfter = 1ms, .awayFor = 1ms, .restartMode = mode});
        QTRY_COMPARE(line.server.variable("sv_ranked") == "0", isRankedBefore);
        QTEST(line.server.variable("sv_ranked"), "ranked");
        QTEST(line.server.variable("playlist_enabled"), "playlists");
    }

    void comesBackOnceWithANewGame()
    {
        Line line({.ranked = true, .restartAfter = 500ms, .awayFor = 1ms});
        const quint16 port = line.server.port();
        const QString motd = line.server.variable("g_motd");
        QCOMPARE(line.client.ask("demo setadmindvar g_motd old"), reply(""));
        line.server.setFaults({.throttle = 1h}); // remembered no longer than the game
        QCOMPARE(line.client.ask("demo say before"), reply("console: before\n"));
        QTRY_COMPARE(line.server.variable("g_motd"), motd);
        QCOMPARE(line.server.variable("sv_ranked"), "2");
        QCOMPARE(line.client.ask("demo say back"), reply("console: back\n"));
        QCOMPARE(line.server.port(), port);
        line.server.setFaults({});
        QCOMPARE(line.client.ask("demo setadmindvar g_motd old"), reply(""));
        line.server.stop();
        QVERIFY(line.server.start());
        QCOMPARE(line.client.ask("demo say hi"), reply("console: hi\n"));
        QCOMPARE(line.server.variable("g_motd"), "old");
    }

    void portIsFreeWhileTheServerIsAway()
    {
        Line line({.ranked = true, .restartAfter = 1ms, .awayFor = 1s, .restartMode = DemoMode::Unranked});
        DemoServer other({.port = line.server.port(), .password = "other", .frozen = true});
        QTRY_VERIFY(other.port() != 0 || other.start());
        QCOMPARE(line.client.ask("other say hi"), reply("console: hi\n"));
        other.stop();
        QTRY_COMPARE(line.server.variable("sv_ranked"), "0"); // it tries until the port is free
        QCOMPARE(line.client.ask("demo say back"), reply("console: back\n"));
    }

    void stoppedWhileAwayItBeginsAnew()
    {
        Line line({.ranked = true, .restartAfter = 1ms, .awayFor = 1h, .restartMode = DemoMode::Unranked});
        DemoServer other({.port = line.server.port(), .frozen = true});
        QTRY_VERIFY(other.port() != 0 || other.start());
        other.stop();
        line.server.stop();
        QVERIFY(line.server.start());
        QCOMPARE(line.client.ask("demo say back"), reply("console: back\n"));
        QCOMPARE(line.server.variable("sv_ranked"), "0");
    }

    void stopIsPrompt()
    {
        Line line({.faults = {.delay = 60s}});
        for (int i = 0; i < 50; ++i)
            line.client.send(request("demo dvardump"));
        QElapsedTimer timer;
        timer.start();
        line.server.stop();
        QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    }

    void startReportsWhy()
    {
        Line line;
        DemoServer second({.port = line.server.port()});
        QString error;
        QVERIFY(!second.start(&error));
        QVERIFY2(error.contains(QString::number(line.server.port())), qPrintable(error));
        line.server.stop();
        QVERIFY(second.start());
    }

    void gameGoesOnByItself()
    {
        DemoServer server({});
        QVERIFY(server.start());
        const Client client(server.port());
        const QByteArray before = client.ask("demo teamstatus");
        QTRY_VERIFY(client.ask("demo teamstatus") != before);
    }
};

QTEST_GUILESS_MAIN(TestDemoServer)
#include "tst_demoserver.moc"
