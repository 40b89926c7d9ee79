#include "DemoCommandLine.h"
#include "DemoGame.h"
#include "DemoRateLimit.h"
#include "DemoServer.h"
#include "UdpSocket.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

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

    void send(const QByteArray &request)
    {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(server.port());
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        client.send(QByteArray(4, '\xff').append('\0').append(request).append('\0'), to);
    }
    QByteArray ask(const QByteArray &request, sockaddr_in *from = nullptr)
    {
        send(request);
        return client.receive(from);
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
    void commands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("pattern"); // of the whole reply
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("value"); // of the variable afterwards
        const auto reply = [](const QString &command, const char *pattern, const char *name = "world_gravity",
                              const char *value = "800") {
            QTest::newRow(qPrintable(command.left(50))) << command << pattern << name << value;
        };
        reply("frobnicate %1", "Unknown command \"frobnicate\"\n");
        reply(QString(DemoGame::MaximumCommandLength + 1, u'a'), "The command is too long.\n");
        reply("dvardump", "(S[R ][L ] +\\w+ \"[^\"]*\"\n){60,}\n\\d+ total dvars\n");
        reply("WORLD_GRAVITY",
              "\"world_gravity\" is: \"800\"\\^7 .*: \"800\"\\^7\n.*Takes any whole number from 1 to 2000\n");
        reply("clientkick 3", ".+ was kicked\n");
        reply("tempbanclient 3", ".+ was banned for a while\n");
        reply("clientkick 18", "Client 18 is not active\n"); // the recorder
        reply("kick all", "12 players were kicked\n");
        reply("say \"hello \\\"you\\\"\"", "tower: hello \"you\"\n");
        reply(R"(say "C:\")", "tower: C:\\\\\n");
        reply("map ward_nowhere", "There is no map ward_nowhere\n");
        reply("setadmindvar house_greeting \"a \\\"b\\\"\n%1\"", "", "house_greeting", "a 'b' %1");
        reply("setadmindvar world_gravity \"2001\"", ".*is not a valid value.*");
        reply("setadmindvar rule_alone_minutes \"nan\"", ".*is not a valid value.*", "rule_alone_minutes", "10");
        reply("setadmindvar mapname \"ward_x\"", "The variable 'mapname' cannot be written\n", "mapname",
              "ward_harbourlights");
        reply("setadmindvar h_unheardOf \"1\"", "There is no variable 'h_unheardOf'\n", "h_unheardOf", "");
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

    void playerListHasItsForm()
    {
        DemoGame game({.players = 300}); // more than there are names
        QStringList rows = game.execute("teamstatus").split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(rows.takeFirst().simplified(), "num score ping guid name team lastmsg address qport rate");
        QVERIFY(rows.takeFirst().startsWith("--- "));
        QVERIFY(rows.takeLast().contains(" democlient^7 "));
        QCOMPARE(rows.size(), 300);
        static const QRegularExpression form("^ *\\d+ +\\d+ +\\d+ +\\d{9} .{3,22}\\^7 +(lamps|wardens|watcher) +\\d+ "
                                             "\\d+\\.\\d+\\.\\d+\\.\\d+:\\d+ +\\d+ +\\d+$");
        QSet<QString> guids;
        for (const QString &row : rows) {
            QVERIFY2(form.match(row).hasMatch(), qPrintable(row));
            guids.insert(row.simplified().section(u' ', 3, 3));
        }
        QCOMPARE(guids.size(), 300);
    }

    void rotation_data()
    {
        QTest::addColumn<DemoOptions>("options");
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<QString>("pattern"); // of all that is played
        const auto row = [](const char *title, const DemoOptions &options, const QStringList &commands,
                            const char *pattern) {
            QTest::newRow(title) << options << commands << pattern;
        };
        const auto rotation = [&](const char *title, const QString &maps, const char *pattern) {
            row(title, {}, {"sv_mapRotation " + maps, "sv_mapRotationCurrent " + maps}, pattern);
        };
        rotation("gametype stays", "gametype alone map ward_tramyard ward_ropeway",
                 "(alone ward_tramyard\nalone ward_ropeway\n)+");
        rotation("nothing to play", "map gametype map", "(crews ward_harbourlights\n)+");
        row("playlist", {.playlists = true}, {"playlist 3", "playlist_excludeGametypeMap beacon ward_ropeway"},
            "(docks ward_\\w+\n|beacon ward_(?!ropeway)\\w+\n)+");
        row("switched off", {.ranked = true, .playlists = true}, {"playlist 1", "closed_ropeway 1"},
            "(crews ward_(?!ropeway)\\w+\n)+");
    }
    void rotation()
    {
        QFETCH(DemoOptions, options);
        QFETCH(QStringList, commands);
        QFETCH(QString, pattern);
        DemoGame game(options);
        for (const QString &command : commands)
            game.execute(command);
        QString played;
        for (int i = 0; i < 200; ++i) {
            game.execute("map_rotate");
            played += game.variable("g_gametype") + u' ' + game.variable("mapname") + u'\n';
        }
        QVERIFY2(QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(played).hasMatch(),
                 qPrintable(played));
    }

    void sameSeedSameGame()
    {
        const auto story = [](quint64 seed, std::chrono::milliseconds slice) -> QString {
            DemoGame game({.playlists = true, .seed = seed});
            for (std::chrono::milliseconds now{0}; now < 5min; now += slice)
                game.advance(slice);
            return game.execute("teamstatus") + game.execute("dvardump") + game.execute("map_rotate");
        };
        QCOMPARE(story(7, 10ms), story(7, 1s)); // however the time is cut
        QVERIFY(story(7, 1s) != story(8, 1s));
    }

    void faults_data()
    {
        QTest::addColumn<DemoFaults>("faults");
        QTest::addColumn<QString>("arrived"); // a letter for each datagram, by its sender, and the time
        const auto row = [](const char *title, const DemoFaults &faults, const char *arrived) {
            QTest::newRow(title) << faults << arrived;
        };
        row("none", {}, "a0 b0 c0");
        row("duplication, delay and gap", {.duplication = 1, .delay = 100ms, .gap = 30ms},
            "a100 a100 b130 b130 c160 c160");
        row("loss", {.loss = 1}, "");
        row("silence", {.silent = true, .stranger = true}, "");
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

    void hasteIsIgnored_data()
    {
        QTest::addColumn<QList<int>>("at"); // milliseconds of each request
        QTest::addColumn<bool>("isLockout");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("those that are ignored do not count") << QList<int>{0, 100, 249, 250, 400} << false << "+--+-";
        QTest::newRow("as many as may be") << QList<int>{0, 1, 29'999} << true << "+++";
        QTest::newRow("the first is forgotten") << QList<int>{0, 1, 2, 30'000} << true << "++++";
        QTest::newRow("locked out until its end")
            << QList<int>{0, 0, 0, 0, 179'999, 180'000, 180'000, 180'000, 180'000} << true << "+++--+++-";
    }
    void hasteIsIgnored()
    {
        QFETCH(QList<int>, at);
        QFETCH(bool, isLockout);
        DemoRateLimit limit;
        QString outcome;
        for (const int time : at) {
            const DemoRateLimit::TimePoint now{std::chrono::milliseconds(time)};
            outcome += (isLockout ? limit.locksOut(3, now) : limit.throttles(250ms, now)) ? u'-' : u'+';
        }
        QTEST(outcome, "outcome");
    }

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

    void longRepliesAreCutAndReordered()
    {
        Line line;
        QList<QByteArray> parts{line.ask("demo dvardump")};
        while (!parts.last().endsWith(QByteArray(" total dvars\n").append('\0')))
            parts.append(line.client.receive());
        for (const QByteArray &part : parts)
            QVERIFY(part.size() <= 1012 && part.startsWith(reply("").chopped(1)));
        line.server.setFaults({.reorder = true});
        QList<QByteArray> mixed{line.ask("demo dvardump")};
        while (mixed.size() < parts.size())
            mixed.append(line.client.receive());
        QVERIFY(parts.size() >= 4 && mixed != parts);
        std::sort(parts.begin(), parts.end());
        std::sort(mixed.begin(), mixed.end());
        QCOMPARE(mixed, parts);
    }

    void aStrangerSpeaksFirst()
    {
        Line line({.faults = {.stranger = true}});
        sockaddr_in from{};
        QVERIFY(!line.ask("demo say hi", &from).contains("tower: hi"));
        QCOMPARE(ntohl(from.sin_addr.s_addr), DemoSockets::StrangerAddress);
        QCOMPARE(line.client.receive(&from), reply("tower: hi\n"));
        QCOMPARE(ntohl(from.sin_addr.s_addr), in_addr_t(INADDR_LOOPBACK));
    }

    void restartsWithAnotherMode()
    {
        Line line({.ranked = true, .restartAfter = 100ms, .awayFor = 1ms, .restartMode = DemoMode::Playlists});
        const quint16 port = line.server.port();
        QTRY_COMPARE(line.server.variable("sv_ranked"), "0");
        QCOMPARE(line.server.variable("playlist_enabled"), "1");
        QCOMPARE(line.ask("demo setadmindvar house_greeting old"), reply(""));
        line.server.stop();
        QVERIFY(line.server.start());
        QCOMPARE(line.server.port(), port);
        QCOMPARE(line.ask("demo say hi"), reply("tower: hi\n"));
        QCOMPARE(line.server.variable("house_greeting"), "old"); // stopped and started, the game goes on
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
        QTRY_VERIFY(second.playerCount() != 12); // the game goes on by itself
    }

    void commandLine_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("says");
        QTest::newRow("port too high") << "--port 65536"
                                       << "--port takes a whole number from 0 to 65535, not \"65536\".";
        QTest::newRow("too many players") << "--players 1001"
                                          << "from 0 to 1000";
        QTest::newRow("loss not a number") << "--loss nan"
                                           << "--loss takes a number from 0 to 1, not \"nan\".";
        QTest::newRow("throttle too long") << "--throttle 60001"
                                           << "--throttle takes a whole number from 0 to 60000";
        QTest::newRow("unknown mode") << "--restart-after 1 --restart-mode golf"
                                      << "takes unranked, playlists or ranked, not \"golf\"";
        QTest::newRow("mode without restart") << "--restart-mode ranked"
                                              << "--restart-mode needs --restart-after.";
        QTest::newRow("unknown option") << "--fast"
                                        << "fast";
        QTest::newRow("stray word") << "--ranked 50960"
                                    << "\"50960\"";
        QTest::newRow("password beyond Latin-1") << u"--password \u0416"_qs << "password";
        QTest::newRow("all is well") << "--restart-after 5 --restart-mode ranked" << QString();
    }
    void commandLine()
    {
        QFETCH(QString, typed);
        QFETCH(QString, says);
        const DemoCommandLine line = DemoCommandLine::parse(QStringList("demo") + typed.split(u' '), {});
        QCOMPARE(line.task, says.isEmpty() ? DemoCommandLine::Task::Serve : DemoCommandLine::Task::Refuse);
        QVERIFY2(line.text.contains(says), qPrintable(line.text));
    }

    void acceptedOptions()
    {
        const QString typed = "demo --port 50960 --players 30 --ranked --frozen --loss 0.25 --delay 150 --duplicate 1 "
                              "--silent-after 2 --throttle 250 --lockout 20 --gap 30 --stranger --sparse --no-count "
                              "--restart-after 5 --restart-mode playlists --seed 18446744073709551615";
        const DemoOptions options = DemoCommandLine::parse(typed.split(u' '), "shell").options;
        QCOMPARE(options.port, 50960);
        QCOMPARE(options.players, 30);
        QCOMPARE(options.password, "shell");
        QCOMPARE(options.seed, ~0ull);
        QVERIFY(options.ranked && options.frozen && !options.playlists && options.sparse && !options.dumpCount);
        QVERIFY(options.restartAfter == 5s && options.restartMode == DemoMode::Playlists);
        const DemoFaults &faults = options.faults;
        QVERIFY(faults.loss == 0.25 && faults.duplication == 1 && faults.garbage == 0 && faults.silentAfter == 2);
        QVERIFY(faults.delay == 150ms && faults.throttle == 250ms && faults.gap == 30ms && faults.lockout == 20);
        QVERIFY(faults.stranger && !faults.silent && !faults.reorder && !faults.otherPort);
        QCOMPARE(DemoCommandLine::parse({"demo", "--password", ""}, "shell").options.password, "");
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
