#include "DemoCommandLog.h"
#include "DemoContent.h"
#include "DemoFaultyLine.h"
#include "DemoGame.h"
#include "DemoWords.h"

#include <QRegularExpression>
#include <QTest>

#include <algorithm>

using namespace std::chrono_literals;

namespace
{
QStringList lines(const QString &text)
{
    return text.split(u'\n', Qt::SkipEmptyParts);
}

QStringList tokens(const QString &line)
{
    return line.simplified().split(u' ');
}

/// The rows of a teamstatus reply, cut into words; the recording client left out.
QList<QStringList> playerRows(DemoGame &game)
{
    QList<QStringList> rows;
    const QStringList text = lines(game.execute("teamstatus"));
    for (const QString &line : text.mid(2)) {
        if (!line.contains("democlient"))
            rows.append(tokens(line));
    }
    return rows;
}

bool isThere(DemoGame &game, const QString &guid)
{
    const QList<QStringList> rows = playerRows(game);
    return std::any_of(rows.begin(), rows.end(), [&](const QStringList &row) { return row.at(3) == guid; });
}
} // namespace

class TestDemo : public QObject
{
    Q_OBJECT
private slots:
    void words_data();
    void words();
    void commands_data();
    void commands();
    void writes_data();
    void writes();
    void everyVariableIsShownAsItIsDumped();
    void gametypeWaitsForTheMap();
    void playerListHasItsForm_data();
    void playerListHasItsForm();
    void removedPlayersStayAway_data();
    void removedPlayersStayAway();
    void rotation_data();
    void rotation();
    void playlistLeavesOutWhatIsExcluded_data();
    void playlistLeavesOutWhatIsExcluded();
    void roundsEnd_data();
    void roundsEnd();
    void sameSeedSameGame();
    void lifeGoesOn();
    void logIsBounded();
    void faultsFollowTheirChance_data();
    void faultsFollowTheirChance();
};

void TestDemo::words_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("nothing") << "" << QStringList();
    QTest::newRow("blanks only") << " \t \n" << QStringList();
    QTest::newRow("blanks around") << "  map   mp_a " << QStringList{"map", "mp_a"};
    QTest::newRow("quoted blanks") << "set a \"b  c\"" << QStringList{"set", "a", "b  c"};
    QTest::newRow("empty value") << "set a \"\"" << QStringList{"set", "a", ""};
    QTest::newRow("escaped quotes") << R"(say "a \"b\" c")" << QStringList{"say", "a \"b\" c"};
    QTest::newRow("backslash at the end") << R"(set a "C:\")" << QStringList{"set", "a", "C:\\"};
    QTest::newRow("quote never closed") << "say \"a b" << QStringList{"say", "a b"};
    QTest::newRow("quotes in quotes") << "say \"a \"b\" c\"" << QStringList{"say", "a ", "b", " c"};
    QTest::newRow("lone quote") << "\"" << QStringList{""};
}

void TestDemo::words()
{
    QFETCH(QString, line);
    QTEST(demoWords(line), "expected");
}

void TestDemo::commands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("pattern"); // of the whole reply
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("unknown") << "frobnicate 7"
                             << "Unknown command \"frobnicate\"\n";
    QTest::newRow("unknown with marks") << "%1%2 x"
                                        << "Unknown command \"%1%2\"\n";
    QTest::newRow("dump") << "dvardump"
                          << "(S[R ][L ] +\\w+ \"[^\"]*\"\n){60,}\n\\d+ total dvars\n";
    QTest::newRow("variable in any case") << "SV_HostName"
                                          << "\"sv_hostname\" is: \"Harbour Lights \\| Demo Server\"\\^7 in force: "
                                             "\"Harbour Lights \\| Demo Server\"\\^7\n";
    QTest::newRow("variable with limits") << "g_gravity"
                                          << "(?s).*Domain is any integer from 1 to 2000\n";
    QTest::newRow("kick") << "clientkick 3"
                          << ".+ was kicked\n";
    QTest::newRow("kick nobody") << "clientkick 17"
                                 << "Client 17 is not active\n";
    QTest::newRow("kick the recorder") << "clientkick 18"
                                       << "Client 18 is not active\n";
    QTest::newRow("kick a word") << "clientkick x"
                                 << "Client x is not active\n";
    QTest::newRow("kick a huge number") << "clientkick 99999999999"
                                        << "Client 99999999999 is not active\n";
    QTest::newRow("kick without a number") << "clientkick"
                                           << "Usage: .+\n";
    QTest::newRow("ban nobody") << "banclient -1"
                                << "Client -1 is not active\n";
    QTest::newRow("temp ban nobody") << "tempbanclient 400"
                                     << "Client 400 is not active\n";
    QTest::newRow("tell") << "tell 0 see you"
                          << "console to .+: see you\n";
    QTest::newRow("tell nobody") << "tell 99 see you"
                                 << "Client 99 is not active\n";
    QTest::newRow("kick all") << "kick all"
                              << "12 players were kicked\n";
    QTest::newRow("kick a stranger") << "kick Somebody Else"
                                     << "Player Somebody Else is not on the server\n";
    QTest::newRow("say") << "say \"hello \\\"you\\\"\""
                         << "console: hello \"you\"\n";
    QTest::newRow("say nothing") << "say \"\""
                                 << "console: \n";
    QTest::newRow("map") << "map mp_saltworks"
                         << "Loading map mp_saltworks with gametype tdm\n";
    QTest::newRow("no such map") << "map mp_nowhere"
                                 << "Can't find map mp_nowhere\n";
    QTest::newRow("map without a name") << "map"
                                        << "Usage: .+\n";
    QTest::newRow("restart") << "map_restart"
                             << "Loading map mp_harbourlights with gametype tdm\n";
    QTest::newRow("fast restart") << "fast_restart"
                                  << "";
    QTest::newRow("rotate") << "map_rotate"
                            << "Loading map mp_saltworks with gametype tdm\n";
    QTest::newRow("status") << "status"
                            << "(?s)hostname: Harbour.*players: 12 of 18\n.*democlient.*";
    QTest::newRow("too long") << QString(DemoGame::MaximumCommandLength + 1, u'a') << "The command is too long.\n";
    QTest::newRow("nothing but quotes") << QString(10'000, u'"') << "(?s)Unknown command.*";
    QTest::newRow("control characters") << QString("say a\x01\x1f\x7f") << "(?s)console: a.*";
}

void TestDemo::commands()
{
    QFETCH(QString, command);
    QFETCH(QString, pattern);
    DemoGame game({});
    const QString text = game.execute(command);
    QVERIFY2(QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(text).hasMatch(), qPrintable(text));
    QVERIFY(game.execute("teamstatus").startsWith("num score ping guid"));
}

void TestDemo::writes_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("pattern"); // of the reply
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value"); // afterwards
    const auto row = [](const char *title, const QString &command, const char *pattern, const char *name,
                        const QString &value) {
        QTest::newRow(title) << command << pattern << name << value;
    };
    row("text", "setadmindvar sv_hostname \"My %1 Server\"", "", "sv_hostname", "My %1 Server");
    row("empty text", "setadmindvar g_motd \"\"", "", "g_motd", "");
    row("quotes within", "setadmindvar g_motd \"a \\\"b\\\" c\"", "", "g_motd", "a 'b' c");
    row("line break", "setadmindvar g_motd \"a\nb\"", "", "g_motd", "a b");
    row("any case", "setadmindvar G_GRAVITY \"600\"", "", "g_gravity", "600");
    row("bare name and value", "playlist_enabled 1", "", "playlist_enabled", "1");
    row("playlist by number", "playlist 3", "", "playlist", "3");
    row("lowest", "setadmindvar g_gravity \"1\"", "", "g_gravity", "1");
    row("below", "setadmindvar g_gravity \"0\"", "\"0\" is not a valid value for dvar 'g_gravity'\n.*", "g_gravity",
        "800");
    row("above", "setadmindvar g_gravity \"2001\"", ".*is not a valid value.*", "g_gravity", "800");
    row("beyond any number", "setadmindvar g_gravity \"99999999999999999999\"", ".*is not a valid value.*", "g_gravity",
        "800");
    row("word for a number", "setadmindvar g_gravity \"low\"", ".*is not a valid value.*", "g_gravity", "800");
    row("nothing for a number", "setadmindvar g_gravity \"\"", ".*is not a valid value.*", "g_gravity", "800");
    row("not a number at all", "setadmindvar scr_dm_timelimit \"nan\"", ".*is not a valid value.*", "scr_dm_timelimit",
        "10");
    row("fraction", "setadmindvar scr_dm_timelimit \"2.5\"", "", "scr_dm_timelimit", "2.5");
    row("switch", "setadmindvar perk_keenEar \"2\"", ".*is not a valid value.*Domain is 0 or 1\n", "perk_keenEar", "0");
    row("no such gametype", "setadmindvar g_gametype \"golf\"", ".*is not a valid value.*", "g_gametype", "tdm");
    row("read only", "setadmindvar mapname \"mp_x\"", "dvar 'mapname' is read only\n", "mapname", "mp_harbourlights");
    row("unknown", "setadmindvar g_unheardOf \"1\"", "dvar 'g_unheardOf' does not exist\n", "g_unheardOf", "");
    row("nameless", "setadmindvar", "Usage: .+", "", "");
    row("too long", "setadmindvar g_motd " + QString(DemoVariables::MaximumLength + 1, u'x'), ".*too long\n", "g_log",
        "games_mp.log");
}

void TestDemo::writes()
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

void TestDemo::everyVariableIsShownAsItIsDumped()
{
    DemoGame game({});
    static const QRegularExpression line("(\\w+) \"(.*)\"$");
    int count = 0;
    for (const QString &dumped : lines(game.execute("dvardump"))) {
        const auto match = line.match(dumped);
        if (!match.hasMatch())
            continue;
        ++count;
        const QStringList shown = game.execute(match.captured(1)).split(u'"');
        QCOMPARE(shown.size(), 7); // three quoted fields
        QCOMPARE(shown.at(1), match.captured(1));
        QCOMPARE(shown.at(3), match.captured(2));
        QCOMPARE(shown.at(5), match.captured(2));
    }
    QVERIFY(game.execute("dvardump").endsWith(QString("\n%1 total dvars\n").arg(count)));
    for (const DemoGametype &gametype : demoGametypes())
        QVERIFY(!game.variable(QString("scr_%1_scorelimit").arg(gametype.name)).isEmpty());
    for (const DemoMap &map : demoMaps())
        QCOMPARE(game.variable(map.excludeVariable), "0");
}

void TestDemo::gametypeWaitsForTheMap()
{
    DemoGame game({});
    QCOMPARE(game.execute("setadmindvar g_gametype \"dm\""), "");
    QVERIFY(game.execute("g_gametype").startsWith("\"g_gametype\" is: \"dm\"^7 in force: \"tdm\"^7\n"));
    QCOMPARE(game.execute("map mp_tramyard"), "Loading map mp_tramyard with gametype dm\n");
    QVERIFY(game.execute("g_gametype").contains("in force: \"dm\""));
    for (const QStringList &row : playerRows(game)) {
        QCOMPARE(row.at(1), "0");
        QVERIFY(row.at(row.size() - 5) == "free" || row.at(row.size() - 5) == "spectator");
    }
}

void TestDemo::playerListHasItsForm_data()
{
    QTest::addColumn<int>("players");
    QTest::addColumn<int>("expected");
    QTest::newRow("nobody") << 0 << 0;
    QTest::newRow("usual") << 12 << 12;
    QTest::newRow("more than there are names") << 300 << 300;
    QTest::newRow("negative") << -5 << 0;
    QTest::newRow("too many") << 1'000'000 << DemoOptions::MaximumPlayers;
}

void TestDemo::playerListHasItsForm()
{
    QFETCH(int, players);
    QFETCH(int, expected);
    DemoGame game({.players = players});
    QCOMPARE(game.playerCount(), expected);
    const QStringList text = lines(game.execute("teamstatus"));
    QCOMPARE(text.size(), expected + 3);
    QCOMPARE(text.at(0).simplified(), "num score ping guid name team lastmsg address qport rate");
    QVERIFY(text.at(1).startsWith("--- "));
    QVERIFY(text.last().contains(" democlient^7 "));
    QSet<QString> guids;
    static const QRegularExpression form("^ *\\d+ +\\d+ +\\d+ +\\d{9} .{3,22}\\^7 +(allies|axis|spectator) +\\d+ "
                                         "\\d+\\.\\d+\\.\\d+\\.\\d+:\\d+ +\\d+ +\\d+$");
    const QList<QStringList> rows = playerRows(game);
    for (int i = 0; i < expected; ++i) {
        QVERIFY2(form.match(text.at(i + 2)).hasMatch(), qPrintable(text.at(i + 2)));
        QCOMPARE(rows.at(i).at(0), QString::number(i));
        guids.insert(rows.at(i).at(3));
    }
    QCOMPARE(guids.size(), expected);
}

void TestDemo::removedPlayersStayAway_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<std::chrono::minutes>("surelyAway");
    QTest::addColumn<bool>("comesBack");
    QTest::newRow("kicked") << "clientkick 4" << 1min << true;
    QTest::newRow("banned") << "banclient 4" << 240min << false;
    QTest::newRow("banned for a while") << "tempbanclient 4" << 5min << true;
}

void TestDemo::removedPlayersStayAway()
{
    QFETCH(QString, command);
    QFETCH(std::chrono::minutes, surelyAway);
    QFETCH(bool, comesBack);
    DemoGame game({});
    const QString guid = playerRows(game).at(4).at(3);
    game.execute(command);
    QCOMPARE(game.playerCount(), 11);
    for (int second = 0; second < surelyAway / 1s - 1; ++second) {
        game.advance(1s);
        if (second % 20 == 0)
            QVERIFY(!isThere(game, guid));
    }
    bool isBack = false;
    for (int minute = 0; comesBack && !isBack && minute < 1440; ++minute) {
        game.advance(1min);
        isBack = isThere(game, guid);
    }
    QCOMPARE(isBack, comesBack);
}

void TestDemo::rotation_data()
{
    QTest::addColumn<QString>("rotation");
    QTest::addColumn<QStringList>("expected"); // after each of four rotations
    QTest::newRow("gametype stays") << "gametype dm map mp_tramyard map mp_papermill"
                                    << QStringList{"dm mp_tramyard", "dm mp_papermill", "dm mp_tramyard",
                                                   "dm mp_papermill"};
    QTest::newRow("gametype for each") << "gametype dm map mp_tramyard gametype ctf map mp_papermill"
                                       << QStringList{"dm mp_tramyard", "ctf mp_papermill", "dm mp_tramyard",
                                                      "ctf mp_papermill"};
    QTest::newRow("bare names") << "mp_tramyard  mp_papermill mp_ropeway"
                                << QStringList{"tdm mp_tramyard", "tdm mp_papermill", "tdm mp_ropeway",
                                               "tdm mp_tramyard"};
    QTest::newRow("unknown map passed over")
        << "map mp_gone map mp_ropeway"
        << QStringList{"tdm mp_ropeway", "tdm mp_ropeway", "tdm mp_ropeway", "tdm mp_ropeway"};
    QTest::newRow("unknown gametype passed over")
        << "gametype golf map mp_ropeway"
        << QStringList{"tdm mp_ropeway", "tdm mp_ropeway", "tdm mp_ropeway", "tdm mp_ropeway"};
    const QStringList stays{"tdm mp_harbourlights", "tdm mp_harbourlights", "tdm mp_harbourlights",
                            "tdm mp_harbourlights"};
    QTest::newRow("empty") << "" << stays;
    QTest::newRow("only a gametype") << "gametype dm" << stays;
    QTest::newRow("words without what follows") << "map gametype map" << stays;
    QTest::newRow("unknown maps only") << QString("map x ").repeated(1000) << stays;
}

void TestDemo::rotation()
{
    QFETCH(QString, rotation);
    DemoGame game({});
    game.execute("setadmindvar sv_mapRotation \"" + rotation + u'"');
    game.execute("setadmindvar sv_mapRotationCurrent \"" + rotation + u'"');
    QStringList played;
    for (int i = 0; i < 4; ++i) {
        QVERIFY(game.execute("map_rotate").size() < 4000);
        played.append(game.variable("g_gametype") + u' ' + game.variable("mapname"));
    }
    QTEST(played, "expected");
}

void TestDemo::playlistLeavesOutWhatIsExcluded_data()
{
    QTest::addColumn<bool>("ranked");
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<QString>("expected"); // of all that is played
    QString otherMaps;
    for (const DemoMap &map : demoMaps())
        otherMaps += QByteArrayView(map.name) == "mp_ropeway" ? QString() : QString(map.name) + u' ';
    const QString onlyRopeway = "playlist_excludeMap " + otherMaps;
    QTest::newRow("its gametypes only") << false << QStringList{"playlist 3"} << "(dom|koth) mp_\\w+";
    QTest::newRow("excluded maps") << false << QStringList{"playlist 1", onlyRopeway} << "tdm mp_ropeway";
    QTest::newRow("excluded gametype") << false
                                       << QStringList{"playlist 3", "playlist_excludeGametype dom dm", onlyRopeway}
                                       << "koth mp_ropeway";
    QTest::newRow("excluded pair") << false
                                   << QStringList{"playlist 3", "playlist_excludeGametypeMap koth mp_ropeway dm",
                                                  onlyRopeway}
                                   << "dom mp_ropeway";
    QTest::newRow("everything excluded") << false
                                         << QStringList{"map mp_windbreak", "playlist 1",
                                                        "playlist_excludeGametype tdm"}
                                         << "\\w+ mp_windbreak";
    QTest::newRow("map switched off on a ranked server")
        << true
        << QStringList{"playlist 1", onlyRopeway, "playlist_excludeMap " + otherMaps.section(u' ', 2),
                       "mapexclude_ropeway 1", "mapexclude_brickfield 1"}
        << "tdm mp_coldstore";
    QTest::newRow("switched off but not ranked")
        << false << QStringList{"playlist 1", onlyRopeway, "mapexclude_ropeway 1"} << "tdm mp_ropeway";
    QTest::newRow("unknown playlist") << false << QStringList{"playlist 999"} << "\\w+ mp_\\w+";
}

void TestDemo::playlistLeavesOutWhatIsExcluded()
{
    QFETCH(bool, ranked);
    QFETCH(QStringList, commands);
    QFETCH(QString, expected);
    DemoGame game({.ranked = ranked, .playlists = true});
    for (const QString &command : commands)
        game.execute(command);
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(expected));
    for (int i = 0; i < 50; ++i) {
        game.execute("map_rotate");
        const QString played = game.variable("g_gametype") + u' ' + game.variable("mapname");
        QVERIFY2(pattern.match(played).hasMatch(), qPrintable(played));
    }
}

void TestDemo::roundsEnd_data()
{
    QTest::addColumn<QString>("limit");
    QTest::addColumn<bool>("ends"); // within two minutes
    QTest::newRow("by time") << "scr_tdm_timelimit 1.5" << true;
    QTest::newRow("by points") << "scr_tdm_scorelimit 100" << true;
    QTest::newRow("without limits") << "scr_tdm_numlives 0" << false;
}

void TestDemo::roundsEnd()
{
    QFETCH(QString, limit);
    DemoGame game({});
    game.execute("scr_tdm_timelimit 0");
    game.execute("scr_tdm_scorelimit 0");
    game.execute(limit);
    const QString before = game.variable("mapname");
    game.advance(100s);
    QTEST(game.variable("mapname") != before, "ends");
}

void TestDemo::sameSeedSameGame()
{
    const auto story = [](quint64 seed, std::chrono::milliseconds slice) -> QString {
        DemoGame game({.playlists = true, .seed = seed});
        QString text;
        for (std::chrono::milliseconds now{0}; now < 5min; now += slice)
            game.advance(slice);
        for (const char *command : {"teamstatus", "dvardump", "map_rotate", "clientkick 2"})
            text += game.execute(command);
        game.advance(5min);
        return text + game.execute("teamstatus");
    };
    QCOMPARE(story(7, 250ms), story(7, 250ms));
    QCOMPARE(story(7, 10ms), story(7, 1s)); // however the time is cut
    QVERIFY(story(7, 1s) != story(8, 1s));
}

void TestDemo::lifeGoesOn()
{
    DemoGame game({});
    const QSet<QString> guidsBefore = [&] {
        QSet<QString> guids;
        for (const QStringList &row : playerRows(game))
            guids.insert(row.at(3));
        return guids;
    }();
    QSet<QString> guidsLater;
    QSet<QString> maps;
    QSet<QString> pings;
    for (int minute = 0; minute < 120; ++minute) {
        game.advance(1min);
        QVERIFY2(game.playerCount() >= 6 && game.playerCount() <= 14, qPrintable(QString::number(game.playerCount())));
        maps.insert(game.variable("mapname"));
        for (const QStringList &row : playerRows(game)) {
            guidsLater.insert(row.at(3));
            pings.insert(row.at(2));
        }
    }
    QVERIFY(guidsLater.size() > guidsBefore.size());
    QVERIFY(maps.size() >= 4);
    QVERIFY(pings.size() > 20);
}

void TestDemo::logIsBounded()
{
    DemoCommandLog log;
    const QString huge(DemoGame::MaximumCommandLength, u'x');
    for (int i = 0; i < 6000; ++i)
        log.append(huge);
    qsizetype characters = 0;
    for (const QString &entry : log.entries())
        characters += entry.size();
    QVERIFY(characters <= DemoCommandLog::MaximumCharacters);
    for (int i = 0; i <= DemoCommandLog::MaximumEntries; ++i)
        log.append(QString::number(i));
    QCOMPARE(log.entries().size(), DemoCommandLog::MaximumEntries);
    QCOMPARE(log.entries().first(), "1");
}

void TestDemo::faultsFollowTheirChance_data()
{
    QTest::addColumn<double>("loss");
    QTest::addColumn<double>("duplication");
    QTest::addColumn<double>("share"); // what arrives of what was sent
    QTest::newRow("a good line") << 0.0 << 0.0 << 1.0;
    QTest::newRow("some loss") << 0.4 << 0.0 << 0.6;
    QTest::newRow("some duplication") << 0.0 << 0.3 << 1.3;
    QTest::newRow("both") << 0.5 << 0.5 << 0.75;
    QTest::newRow("a dead line") << 1.0 << 1.0 << 0.0;
}

void TestDemo::faultsFollowTheirChance()
{
    QFETCH(double, loss);
    QFETCH(double, duplication);
    QFETCH(double, share);
    QList<QByteArray> sent;
    for (int i = 0; i < 10'000; ++i)
        sent.append(QByteArray::number(i));
    const auto arriving = [&](quint64 seed) {
        DemoFaultyLine line(seed);
        line.setFaults({.loss = loss, .duplication = duplication});
        return line.carry(sent);
    };
    const QList<QByteArray> first = arriving(5);
    QVERIFY(qAbs(static_cast<double>(first.size()) - share * 10'000) < 400);
    QCOMPARE(arriving(5), first);
    const bool isCertain = share == 1.0 || share == 0.0;
    QCOMPARE(arriving(6) == first, isCertain);
}

QTEST_GUILESS_MAIN(TestDemo)
#include "tst_demo.moc"
