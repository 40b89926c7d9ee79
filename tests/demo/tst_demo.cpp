#include "DemoCommandLog.h"
#include "DemoFaultyLine.h"
#include "DemoGame.h"
#include "DemoRateLimit.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace std::chrono_literals;

namespace
{
/// The rows of a teamstatus reply; the two title lines and the recording client left out.
QStringList playerRows(DemoGame &game)
{
    return game.execute("teamstatus").split(u'\n', Qt::SkipEmptyParts).mid(2, game.playerCount());
}

QString guid(const QString &row)
{
    return row.simplified().section(u' ', 3, 3);
}
} // namespace

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
        const auto reply = [](const QString &command, const char *pattern, const char *name = "g_gravity",
                              const char *value = "800") {
            QTest::newRow(qPrintable(command.left(50))) << command << pattern << name << value;
        };
        reply("frobnicate %1", "Unknown command \"frobnicate\"\n");
        reply(QString(DemoGame::MaximumCommandLength + 1, u'a'), "The command is too long.\n");
        reply("dvardump", "(S[R ][L ] +\\w+ \"[^\"]*\"\n){60,}\n\\d+ total dvars\n");
        reply("G_GRAVITY", "\"g_gravity\" is: \"800\"\\^7 .*: \"800\"\\^7\n.*Domain is any integer from 1 to 2000\n");
        reply("clientkick 3", ".+ was kicked\n");
        reply("clientkick 18", "Client 18 is not active\n"); // the recorder
        reply("kick all", "12 players were kicked\n");
        reply("say \"hello \\\"you\\\"\"", "console: hello \"you\"\n");
        reply(R"(say "C:\")", "console: C:\\\\\n");
        reply("say \"a  b", "console: a  b\n");
        reply("map mp_nowhere", "Can't find map mp_nowhere\n");
        reply("setadmindvar g_motd \"a \\\"b\\\"\n%1\"", "", "g_motd", "a 'b' %1");
        reply("setadmindvar g_gravity \"0\"", "\"0\" is not a valid value for dvar 'g_gravity'\n.*");
        reply("setadmindvar g_gravity \"2001\"", ".*is not a valid value.*");
        reply("setadmindvar scr_dm_timelimit \"nan\"", ".*is not a valid value.*", "scr_dm_timelimit", "10");
        reply("setadmindvar perk_keenEar \"2\"", ".*not a valid value.*Domain is 0 or 1\n", "perk_keenEar", "0");
        reply("setadmindvar g_gametype \"golf\"", ".*is not a valid value.*", "g_gametype", "tdm");
        reply("setadmindvar mapname \"mp_x\"", "dvar 'mapname' is read only\n", "mapname", "mp_harbourlights");
        reply("setadmindvar g_unheardOf \"1\"", "dvar 'g_unheardOf' does not exist\n", "g_unheardOf", "");
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

    void gametypeWaitsForTheMap()
    {
        DemoGame game({});
        QCOMPARE(game.execute("setadmindvar g_gametype \"dm\""), "");
        QVERIFY(game.execute("g_gametype").startsWith("\"g_gametype\" is: \"dm\"^7 in force: \"tdm\"^7\n"));
        QCOMPARE(game.execute("map mp_tramyard"), "Loading map mp_tramyard with gametype dm\n");
        QVERIFY(game.execute("g_gametype").contains("in force: \"dm\""));
    }

    void playerListHasItsForm()
    {
        DemoGame game({.players = 300}); // more than there are names
        const QStringList text = game.execute("teamstatus").split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(text.size(), 303);
        QCOMPARE(text.at(0).simplified(), "num score ping guid name team lastmsg address qport rate");
        QVERIFY(text.at(1).startsWith("--- "));
        QVERIFY(text.last().contains(" democlient^7 "));
        static const QRegularExpression form("^ *\\d+ +\\d+ +\\d+ +\\d{9} .{3,22}\\^7 +(allies|axis|spectator) +\\d+ "
                                             "\\d+\\.\\d+\\.\\d+\\.\\d+:\\d+ +\\d+ +\\d+$");
        QSet<QString> guids;
        for (const QString &row : playerRows(game)) {
            QVERIFY2(form.match(row).hasMatch(), qPrintable(row));
            guids.insert(guid(row));
        }
        QCOMPARE(guids.size(), 300);
    }

    void bannedPlayersStayAway()
    {
        DemoGame game({});
        const QString banned = guid(playerRows(game).at(4));
        const QString tempBanned = guid(playerRows(game).at(5));
        game.execute("banclient 4");
        game.execute("tempbanclient 5");
        bool isBack = false;
        for (int minute = 1; minute < 1440; ++minute) {
            game.advance(1min);
            const QString rows = game.execute("teamstatus");
            QVERIFY(!rows.contains(banned));
            isBack = isBack || rows.contains(tempBanned);
            QVERIFY(minute >= 5 || !isBack);
            QVERIFY2(game.playerCount() >= 6 && game.playerCount() <= 14, qPrintable(rows));
        }
        QVERIFY(isBack);
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
        rotation("gametype stays", "gametype dm map mp_tramyard map mp_ropeway", "(dm mp_tramyard\ndm mp_ropeway\n)+");
        rotation("bare names", "mp_tramyard mp_ropeway", "(tdm mp_tramyard\ntdm mp_ropeway\n)+");
        rotation("unknown ones", "gametype golf map mp_gone map mp_ropeway", "(tdm mp_ropeway\n)+");
        rotation("nothing to play", "map gametype map", "(tdm mp_harbourlights\n)+");
        const DemoOptions lists{.playlists = true};
        row("excluded map", lists, {"playlist 3", "playlist_excludeMap mp_ropeway"},
            "((dom|koth) mp_(?!ropeway)\\w+\n)+");
        row("excluded gametype", lists, {"playlist 3", "playlist_excludeGametype dom dm"}, "(koth mp_\\w+\n)+");
        row("excluded pair", lists, {"playlist 3", "playlist_excludeGametypeMap koth mp_ropeway"},
            "(dom mp_\\w+\n|koth mp_(?!ropeway)\\w+\n)+");
        row("everything excluded", lists, {"map mp_windbreak", "playlist 1", "playlist_excludeGametype tdm"},
            "(\\w+ mp_windbreak\n)+");
        row("switched off", {.ranked = true, .playlists = true}, {"playlist 1", "mapexclude_ropeway 1"},
            "(tdm mp_(?!ropeway)\\w+\n)+");
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

    void roundsEnd()
    {
        for (const char *limit : {"", "scr_tdm_timelimit 1.5", "scr_tdm_scorelimit 100"}) {
            DemoGame game({});
            game.execute("scr_tdm_timelimit 0");
            game.execute("scr_tdm_scorelimit 0");
            game.execute(limit);
            game.advance(100s);
            QCOMPARE(game.variable("mapname") == "mp_harbourlights", qstrlen(limit) == 0);
        }
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

    void logIsBounded()
    {
        DemoCommandLog log;
        for (int i = 0; i <= DemoCommandLog::MaximumEntries; ++i)
            log.append(QString::number(i));
        QCOMPARE(log.entries().size(), DemoCommandLog::MaximumEntries);
        QCOMPARE(log.entries().first(), "1");
    }

    void faultsFollowTheirChance()
    {
        DemoFaultyLine line(5);
        line.setFaults({.loss = 0.5, .duplication = 0.5});
        const auto arrived = static_cast<double>(line.carry(QList<QByteArray>(10'000, "x")).size());
        QVERIFY2(qAbs(arrived - 7'500) < 400, qPrintable(QString::number(arrived)));
    }

    void partsOfAReplyComeApart()
    {
        DemoFaultyLine line(5);
        line.setFaults({.duplication = 1, .delay = 100ms, .gap = 30ms});
        QList<std::chrono::milliseconds> times;
        for (const DemoDatagram &datagram : line.carry({"a", "b", "c"}))
            times.append(datagram.after);
        QCOMPARE(times, (QList<std::chrono::milliseconds>{100ms, 100ms, 130ms, 130ms, 160ms, 160ms}));
    }

    void aStrangerIsFasterOnce()
    {
        DemoFaultyLine line(5);
        line.setFaults({.otherPort = true, .stranger = true, .delay = 100ms});
        const QList<DemoDatagram> arrived = line.carry({"a", "b"});
        QCOMPARE(arrived.size(), 3);
        QVERIFY(arrived.at(0).sender == DemoDatagram::Sender::Stranger && arrived.at(0).after == 100ms);
        QVERIFY(arrived.at(0).bytes.startsWith("\xff\xff\xff\xff\x01print\n"));
        QVERIFY(arrived.at(1).sender == DemoDatagram::Sender::OtherPort && arrived.at(1).bytes == "a");
        line.setFaults({.silent = true, .stranger = true});
        QVERIFY(line.carry({"a"}).isEmpty());
    }

    void hasteIsIgnored_data()
    {
        QTest::addColumn<QList<int>>("at"); // milliseconds of each request
        QTest::addColumn<QString>("outcome");
        QTest::newRow("at the very distance") << QList<int>{0, 250, 500} << "+++";
        QTest::newRow("just sooner") << QList<int>{0, 249, 250} << "+-+";
        QTest::newRow("those that are ignored do not count") << QList<int>{0, 100, 200, 300, 400} << "+--+-";
        QTest::newRow("a burst") << QList<int>{7, 7, 7, 7} << "+---";
    }
    void hasteIsIgnored()
    {
        QFETCH(QList<int>, at);
        DemoRateLimit limit;
        QString outcome;
        for (const int time : at) {
            const DemoRateLimit::TimePoint now{std::chrono::milliseconds(time)};
            outcome += limit.throttles(1, 250ms, now) ? u'-' : u'+';
        }
        QTEST(outcome, "outcome");
        const DemoRateLimit::TimePoint now{std::chrono::milliseconds(at.last())};
        QVERIFY(!limit.throttles(2, 250ms, now)); // somebody else
        QVERIFY(!limit.throttles(1, 0ms, now));
    }

    void manyRequestsLockOut_data()
    {
        QTest::addColumn<QList<int>>("at"); // milliseconds of each request
        QTest::addColumn<QString>("outcome");
        QTest::newRow("as many as may be") << QList<int>{0, 1, 29'999} << "+++";
        QTest::newRow("one more") << QList<int>{0, 1, 2, 29'999} << "+++-";
        QTest::newRow("the first is forgotten") << QList<int>{0, 1, 2, 30'000} << "++++";
        QTest::newRow("until its end") << QList<int>{0, 0, 0, 0, 179'999, 180'000, 180'000, 180'000, 180'000}
                                       << "+++--+++-";
    }
    void manyRequestsLockOut()
    {
        QFETCH(QList<int>, at);
        DemoRateLimit limit;
        QString outcome;
        for (const int time : at) {
            const DemoRateLimit::TimePoint now{std::chrono::milliseconds(time)};
            outcome += limit.locksOut(1, 3, now) ? u'-' : u'+';
        }
        QTEST(outcome, "outcome");
        const DemoRateLimit::TimePoint now{std::chrono::milliseconds(at.last())};
        QVERIFY(!limit.locksOut(2, 3, now)); // somebody else
        QVERIFY(!limit.locksOut(1, 0, now));
    }

    void clientsToRememberAreBounded()
    {
        DemoRateLimit limit;
        const DemoRateLimit::TimePoint begin{};
        QVERIFY(!limit.throttles(0, 1h, begin));
        for (quint32 client = 1; client <= 2 * DemoRateLimit::MaximumClients; ++client)
            QVERIFY(!limit.throttles(client, 1h, begin + std::chrono::seconds(client)));
        QCOMPARE(limit.clientCount(), DemoRateLimit::MaximumClients);
        QVERIFY(limit.throttles(2 * DemoRateLimit::MaximumClients, 1h, begin + 30min)); // the latest is remembered
    }

    void shippedCatalogues_data()
    {
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("element");
        QTest::addColumn<QStringList>("known"); // to a sparse server
        const auto row = [](const char *extension, const char *element, const QStringList &known) {
            QTest::newRow(extension) << QString(extension) << QString(element) << known;
        };
        row("gametypes", "dvar", {});
        row("maps", "excludeDvar", {});
        row("gameSettingsRanked", "dvar", {"sv_hostname", "rcon_password"});
        row("gameSettingsUnranked", "dvar", {"sv_hostname", "rcon_password"});
    }
    // A newcomer can change whatever the shipped catalogues offer.
    void shippedCatalogues()
    {
        QFETCH(QString, extension);
        QFETCH(QString, element);
        QFETCH(QStringList, known);
        const QStringList names = catalogued(extension, element);
        QVERIFY(names.size() >= 16);
        for (const DemoOptions &options :
             {DemoOptions{}, DemoOptions{.playlists = true}, DemoOptions{.ranked = true}}) {
            DemoGame game(options);
            DemoOptions sparse = options;
            sparse.sparse = true;
            DemoGame sparseGame(sparse);
            for (const QString &name : names) {
                const QString shown = game.execute(name);
                QVERIFY2(shown.startsWith(u'"' + name + "\" is: \""), qPrintable(shown));
                const QString unknown = "Unknown command \"" + name + "\"\n";
                QCOMPARE(sparseGame.execute(name), known.contains(name) ? shown : unknown);
            }
        }
    }
    static QStringList catalogued(const QString &extension, const QString &element)
    {
        QFile file(QStringLiteral(FERROW_RESOURCES "/FerrowRcon.default.") + extension);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(file.readAll());
        QStringList names;
        const QRegularExpression tag(QStringLiteral("<%1>([^<]*)</%1>").arg(element));
        for (auto found = tag.globalMatch(text); found.hasNext();)
            names.append(found.next().captured(1).trimmed());
        return names;
    }

    void sparseServerKnowsWhatAConsoleNeeds()
    {
        DemoGame game({.sparse = true});
        for (const char *name : {"rcon_password", "sv_hostname", "sv_ranked", "playlist_enabled", "playlist_excludeMap",
                                 "playlist_excludeGametype", "playlist_excludeGametypeMap", "g_gametype", "mapname",
                                 "sv_mapRotation", "sv_mapRotationCurrent"}) {
            QVERIFY2(game.execute(name).startsWith(u'"' + QString(name) + u'"'), name);
        }
        QVERIFY(!game.execute("dvardump").contains("g_motd"));
        QVERIFY(game.execute("dvardump").endsWith("\n17 total dvars\n"));
        QCOMPARE(game.execute("setadmindvar g_motd \"x\""), "dvar 'g_motd' does not exist\n");
        QCOMPARE(game.variable("g_motd"), "");
        game.advance(30min);
        QVERIFY(game.variable("mapname") != "mp_harbourlights"); // rounds have their limits all the same
    }

    void dumpWithoutCount()
    {
        const QString whole = DemoGame({}).execute("dvardump");
        const QString text = DemoGame({.dumpCount = false}).execute("dvardump");
        QVERIFY(text.endsWith("\"\n") && text.contains("weap_headshotsOnly"));
        QVERIFY(whole.startsWith(text + u'\n') && whole.endsWith(" total dvars\n"));
    }
};

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
