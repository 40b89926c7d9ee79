#include "DataColumns.h"
#include "DemoCommandLine.h"
#include "DemoGame.h"
#include "DemoServer.h"
#include "UdpSocket.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

namespace
{
QByteArray reply(const QByteArray &text)
{
    return QByteArray("\xff\xff\xff\xff\x01print\n") + text + '\0';
}

/// A server whose time stands still, and a client of it.
struct Line {
    explicit Line(DemoOptions options = {}) : server((options.frozen = true, options))
    {
        if (!server.start())
            qFatal("the server does not start");
    }

    QByteArray ask(const QByteArray &request)
    {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(server.port());
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        client.send(QByteArray(4, '\xff').append('\0').append(request).append('\0'), to);
        return client.receive();
    }

    DemoServer server;
    UdpSocket client;
};
} // namespace

/// What other tests, the benchmarks and a newcomer rely on.
class TestDemo : public QObject
{
    Q_OBJECT
private slots:
    void shippedCatalogues_data()
    {
        QTest::addColumn<QString>("element");
        QTest::newRow("gametypes") << "dvar";
        QTest::newRow("maps") << "excludeDvar";
        QTest::newRow("gameSettingsRanked") << "dvar";
        QTest::newRow("gameSettingsUnranked") << "dvar";
    }
    // A newcomer can change whatever the shipped catalogues offer; a sparse server knows next to nothing of it.
    void shippedCatalogues()
    {
        QFETCH(QString, element);
        QFile file(QString(FERROW_RESOURCES "/FerrowRcon.default.") + QTest::currentDataTag());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = file.readAll();
        DemoGame game({});
        DemoGame sparse({.sparse = true});
        int count = 0;
        const QRegularExpression tag(QString("<%1>([^<]*)</%1>").arg(element));
        for (auto found = tag.globalMatch(text); found.hasNext(); ++count) {
            const QString name = found.next().captured(1).trimmed();
            QVERIFY2(game.execute(name).startsWith(u'"' + name + "\" is: \""), qPrintable(name));
            const bool isKnown = name == "sv_hostname" || name == "rcon_password";
            QCOMPARE(sparse.execute(name).startsWith("Unknown command"), !isKnown);
        }
        QVERIFY(count >= 16);
        QVERIFY(sparse.execute("dvardump").endsWith("\n17 total dvars\n"));
        QVERIFY(DemoGame({.dumpCount = false}).execute("dvardump").endsWith("\"\n"));
    }

    void commands_data()
    {
        const auto row = dataColumns<QString, QString, QString, QString>("command", "pattern", "name", "value");
        // pattern: of the whole reply
        // value: of the variable afterwards
        const auto reply = [&row](const QString &command, const char *pattern, const char *name = "world_gravity",
                                  const char *value = "800") {
            row(qPrintable(command.left(50)), command, pattern, name, value);
        };
        reply("frobnicate %1", "Unknown command \"frobnicate\"\n");
        reply(QString(DemoGame::MaximumCommandLength + 1, u'a'), "The command is too long.\n");
        reply("WORLD_GRAVITY",
              "\"world_gravity\" is: \"800\"\\^7 .*: \"800\"\\^7\n.*Takes any whole number from 1 to 2000\n");
        reply("clientkick 18", "Client 18 is not active\n"); // the recorder
        reply("kick all", "12 players were kicked\n");
        reply("say \"hello \\\"you\\\"\"", "tower: hello \"you\"\n");
        reply(R"(say "C:\")", "tower: C:\\\\\n");
        reply("setadmindvar house_greeting \"a \\\"b\\\"\n%1\"", "", "house_greeting", "a 'b' %1");
        reply("setadmindvar world_gravity \"2001\"", ".*is not a valid value.*");
        reply("setadmindvar rule_alone_minutes \"nan\"", ".*is not a valid value.*", "rule_alone_minutes", "10");
        reply("setadmindvar mapname \"ward_x\"", "The variable 'mapname' cannot be written\n", "mapname",
              "ward_harbourlights");
    }
    void commands()
    {
        QFETCH(QString, command);
        QFETCH(QString, pattern);
        QFETCH(QString, name);
        DemoGame game({});
        const QString text = game.execute(command);
        const QRegularExpression expected(QRegularExpression::anchoredPattern(pattern),
                                          QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(expected.match(text).hasMatch(), qPrintable(text));
        QTEST(game.variable(name), "value");
    }
    void faults_data()
    {
        const auto row = dataColumns<DemoFaults, QString>("faults", "arrived");
        // arrived: a letter for each datagram, by its sender, and the time
        row("none", {}, "a0 b0 c0");
        row("duplication, delay and gap", {.duplication = 1, .delay = 100ms, .gap = 30ms},
            "a100 a100 b130 b130 c160 c160");
        row("loss", {.loss = 1}, "");
        row("silence after a part", {.silentAfter = 1}, "a0");
        row("other port and a stranger", {.otherPort = true, .stranger = true, .delay = 100ms},
            "stranger100 other-a100 other-b100 other-c100");
    }
    void faults()
    {
        QFETCH(DemoFaults, faults);
        DemoFaultyLine line(5);
        line.setFaults(faults);
        QStringList arrived;
        for (const DemoDatagram &datagram : line.carry({"a", "b", "c"})) {
            QString text = datagram.bytes;
            if (datagram.sender != DemoDatagram::Sender::Server)
                text =
                    datagram.sender == DemoDatagram::Sender::Stranger ? QString("stranger") : QString("other-" + text);
            arrived.append(text + QString::number(datagram.after.count()));
        }
        QTEST(arrived.join(u' '), "arrived");
    }
    void passwords()
    {
        const QByteArray refusal("\xff\xff\xff\xff\x0a");
        Line line;
        QCOMPARE(line.ask("demo"), reply(""));
        QCOMPARE(line.ask("demonstrate say hi"), refusal);
        QCOMPARE(line.ask("demo setadmindvar rcon_password \"new one\""), reply(""));
        QCOMPARE(line.ask("demo say hi"), refusal);
        QCOMPARE(line.ask("new one kick all"), reply("12 players were kicked\n"));
        QCOMPARE(line.server.commandsSeen().size(), 3); // what is refused is not carried out
        QCOMPARE(Line({.refusalText = true}).ask("Demo say hi"), reply("Invalid password.\n"));
        QCOMPARE(Line({.password = "caf\u00e9 b"}).ask("caf\xe9 b say \xfc"), reply("tower: \xfc\n"));
        QCOMPARE(Line({.password = ""}).ask(" say hi"),
                 reply("The server must set 'rcon_password' for clients to use 'rcon'.\n"));
    }

    void commandLine()
    {
        const auto refusal = [](const QString &typed) -> QString {
            const DemoCommandLine line = DemoCommandLine::parse(QStringList("demo") + typed.split(u' '), {});
            return line.task == DemoCommandLine::Task::Refuse ? line.text : "none";
        };
        QVERIFY(refusal("--port 65536").contains("--port takes a whole number from 0 to 65535, not \"65536\"."));
        QVERIFY(refusal("--restart-mode ranked").contains("--restart-mode needs --restart-after."));
        QVERIFY(refusal(u"--password \u0416"_qs).contains("password"));
        QCOMPARE(refusal("--restart-after 5 --restart-mode ranked"), "none");
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
