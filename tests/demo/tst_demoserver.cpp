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

/// A bare socket that talks to a server on loopback.
struct Client {
    explicit Client(quint16 port) : socket(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            qFatal("no socket");
    }

    void send(const QByteArray &datagram) const
    {
        if (::send(socket.get(), datagram.constData(), static_cast<std::size_t>(datagram.size()), 0) < 0)
            qWarning("not sent");
    }

    QByteArray receive() const
    {
        pollfd waitedFor{socket.get(), POLLIN, 0};
        if (::poll(&waitedFor, 1, 5000) != 1)
            return "nothing came";
        QByteArray bytes(65'536, Qt::Uninitialized);
        return bytes.first(::recv(socket.get(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0));
    }

    QByteArray ask(const QByteArray &text) const
    {
        send(request(text));
        return receive();
    }

    DemoDescriptor socket;
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
