#include "Desk.h"
#include "KelMessageRotation.h"
#include "LocalServer.h"
#include "LoopbackServer.h"
#include "Stalls.h"
#include "Wait.h"

#include <QSet>
#include <QTableView>

#include <cstdio>
#include <random>
#include <utility>

// How long who sits before the window waits for the server: each figure a line "name value", times in milliseconds. It
// works the window's own controls. With the argument "stalls" it tells instead how long the main loop does not come to
// its events: at most 8 ms in 99.9 % of its beats (stall_p999_ms), and in its longest work.

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// Prints a line "name value"; of several values the median, and the largest.
static void print(const QString &name, QList<double> values)
{
    std::sort(values.begin(), values.end());
    if (values.size() == 1)
        std::printf("%s %.1f\n", qPrintable(name), values.first());
    else
        std::printf("%s median %.1f worst %.1f of %lld\n", qPrintable(name), values.value(values.size() / 2),
                    values.value(values.size() - 1), static_cast<long long>(values.size()));
    std::fflush(stdout);
}

/// Answers as a server that knows every variable, and notes when it was asked for its status or told to say something.
class NotingServer
{
public:
    quint16 port() const { return m_server.port(); }
    steady_clock::time_point noted() const { return m_noted; }

private:
    static QByteArray answerTo(const QByteArray &request)
    {
        const QByteArray command = request.mid(5).chopped(1).mid(static_cast<qsizetype>(sizeof "demo"));
        if (command == "dvardump")
            return "S  rcon_password \"demo\"\nS  sv_ranked \"0\"\nS  playlist_enabled \"0\"\n\n3 total dvars\n";
        if (!command.contains(' ') && command != "status" && command != "teamstatus")
            return '"' + command + "\" is: \"none^7\" in force: \"none^7\"\n";
        return "one line\n";
    }

    std::atomic<steady_clock::time_point> m_noted{};
    LoopbackServer m_server{[this](const QByteArray &request) {
        if (request.contains("status") || request.contains("say"))
            m_noted = steady_clock::now();
        return QList<QByteArray>{answerTo(request)};
    }};
};

static void measureText(Desk &desk, const NotingServer &server)
{
    desk.bringToFront("consoleView");
    QList<double> times;
    for (int i = 0; i < 21; ++i) {
        desk.type("status");
        mustReach("the text", [&desk] { return desk.hasShown("one line"); });
        const int before = desk.paints();
        mustReach("the picture", [&] { return desk.paints() > before; });
        times.append(since(server.noted()));
        desk.waitUntilIdle();
    }
    print("datagram_to_text_ms", times);
    desk.bringToFront("playersView"); // from now on its list is fetched with each connect
}

/// How long after it was due a message reaches the server.
static void measureMessages(Desk &desk, const NotingServer &server)
{
    KelMessageRotation &messages = *KelMessageRotation::sharedKelMessageRotation();
    awaited(messages.addEntries(QList<MessageRotationInst>(21, {"hello", "1"})));
    QList<double> late;
    std::optional<steady_clock::time_point> due;
    const auto noteMessage = [&] {
        if (messages.isSending() || !messages.remainingTime())
            return;
        if (due)
            late.append(std::chrono::duration<double, std::milli>(server.noted() - *due).count());
        due = steady_clock::now() + 1s; // the next message
    };
    QObject::connect(&messages, &KelMessageRotation::entryOnAirChanged, &desk, noteMessage);
    messages.startRotation();
    mustReach("the last message", [&late] { return late.size() >= 20; });
    QObject::disconnect(&messages, nullptr, &desk, nullptr);
    messages.stopRotation();
    messages.deleteAllItems(); // or leaving would ask about them
    print("message_late_ms", late);
}

static void measureTexts(Desk &desk)
{
    const NotingServer server;
    desk.settleAt(server.port());
    measureText(desk, server);
    measureMessages(desk, server);
    desk.leave();
}

static DemoOptions optionsOf(milliseconds roundTrip, bool isSparse)
{
    return {.players = 64, .frozen = true, .sparse = isSparse, .faults = {.delay = roundTrip}};
}

static QString named(const char *name, milliseconds roundTrip)
{
    return QStringLiteral("%1_rtt_%2_ms").arg(QLatin1String(name)).arg(roundTrip.count());
}

static void measureVariable(Desk &desk, milliseconds roundTrip)
{
    const auto server = startedServer(optionsOf(roundTrip, false));
    desk.settleAt(server->port());
    QList<double> beyond;
    for (int i = 0; i < 21; ++i) {
        const auto start = steady_clock::now();
        desk.type("sv_hostname");
        desk.waitUntilIdle();
        beyond.append(since(start) - static_cast<double>(roundTrip.count()));
    }
    print(named("variable_beyond", roundTrip), beyond);
    desk.leave();
}

/// The variables that were asked for by name.
static qsizetype askedFor(const DemoServer &server)
{
    QSet<QString> names;
    for (const QString &command : server.commandsSeen()) {
        if (!command.contains(u' '))
            names.insert(command);
    }
    return names.size();
}

/// What connecting to a server that knows next to nothing costs. @return how many variables it was asked for.
static qsizetype measureConnecting(Desk &desk, milliseconds roundTrip)
{
    const auto server = startedServer(optionsOf(roundTrip, true));
    const int alerts = desk.alerts();
    const auto start = steady_clock::now();
    double rows = 0;
    double lastAsked = 0;
    qsizetype requests = 0;
    desk.connectTo(server->port());
    mustReach("the end of all questions", [&] {
        if (rows == 0 && desk.playerRows() > 0)
            rows = since(start);
        const qsizetype seen = server->commandsSeen().size();
        if (std::exchange(requests, seen) != seen)
            lastAsked = since(start);
        return since(start) - lastAsked > 2500 && desk.isIdle();
    });
    const qsizetype names = askedFor(*server);
    print(named("connect_to_player_rows", roundTrip), {rows});
    print(named("last_variable_asked", roundTrip), {lastAsked});
    print(named("variables_asked", roundTrip), {static_cast<double>(names)});
    print(named("requests", roundTrip), {static_cast<double>(requests)});
    print(named("alerts", roundTrip), {static_cast<double>(desk.alerts() - alerts)});
    desk.leave();
    return names;
}

/// Until no list of players is under way, whose end only silence tells: what is left to wait for is a variable.
static void waitUntilNoList(const DemoServer &server, milliseconds pause)
{
    qsizetype lists = 0;
    auto latest = steady_clock::now();
    mustReach("the end of the list", [&] {
        const qsizetype seen = server.commandsSeen().count("teamstatus");
        if (std::exchange(lists, seen) != seen)
            latest = steady_clock::now();
        return steady_clock::now() - latest > 700ms + pause;
    });
}

/// @param names  that the server is asked for.
static void measureKicks(Desk &desk, milliseconds roundTrip, qsizetype names)
{
    constexpr int enough = 20;
    QList<double> times;
    std::mt19937 random(7);
    for (int connects = 0; times.size() < enough && connects < 5; ++connects) {
        const auto server = startedServer(optionsOf(roundTrip, true));
        desk.connectTo(server->port());
        mustReach("players", [&desk] { return desk.playerRows() > 0; });
        while (times.size() < enough) {
            const qsizetype lists = server->commandsSeen().count("teamstatus");
            desk.press("refreshPlayersButton"); // a kick reads an old list anew
            mustReach("a new list", [&] { return server->commandsSeen().count("teamstatus") > lists; });
            waitUntilNoList(*server, milliseconds(random() % 300));
            if (askedFor(*server) + 5 > names)
                break;
            control<QTableView>(desk.window(), "playersTableView")->selectRow(0);
            const auto start = steady_clock::now();
            desk.press("kickPlayerButton");
            mustReach("the kick", [&desk] { return desk.hasShown("was kicked"); });
            times.append(since(start));
        }
        desk.leave();
    }
    print(named("kick_in_the_middle_to_reply_shown", roundTrip), times);
}

/// 200 variables as the server holds them, so that every write is answered with nothing.
static QByteArray configurationOf(const QHash<QString, QString> &held)
{
    // What the demo server lets nobody write it answers with a text, whose end only silence tells.
    static const QSet<QString> unwritable{"game_title",  "mapname",   "line_address", "protocol",
                                          "door_places", "sv_ranked", "version",      "rcon_password"};
    QByteArrayList lines;
    for (auto each = held.cbegin(); each != held.cend() && lines.size() < 200; ++each) {
        if (!unwritable.contains(each.key()) && !each.value().contains(u'"'))
            lines.append(QStringLiteral("%1 \"%2\"\n").arg(each.key(), each.value()).toUtf8());
    }
    return lines.join();
}

static void measureConfiguration(Desk &desk)
{
    const auto server = startedServer(optionsOf(50ms, false));
    desk.settleAt(server->port());
    print("configuration_rtt_50_ms", {desk.loadConfiguration(configurationOf(desk.server().dvarList()))});
    desk.leave();
}

/// Leaves a server that has fallen silent in the middle of a command.
static double leaveDuringCommand(Desk &desk, const std::function<void()> &leave)
{
    const auto server = startedServer(optionsOf(2ms, false));
    desk.settleAt(server->port());
    server->setFaults({.silent = true});
    desk.type("status");
    mustReach("the command", [&server] { return server->commandsSeen().contains("status"); });
    waitFor(100ms);
    const auto start = steady_clock::now();
    leave();
    return since(start);
}

static void measureLeaving(Desk &desk)
{
    QList<double> times;
    for (int i = 0; i < 3; ++i)
        times.append(leaveDuringCommand(desk, [&desk] { desk.leave(); }));
    print("disconnect_ms", times);
    FormMainView &window = desk.window();
    const auto close = [&window] {
        window.close();
        mustReach("closing", [&window] { return !window.isVisible(); });
    };
    print("close_ms", {leaveDuringCommand(desk, close)});
}

/// The parts of a dump of 20,000 variables.
static QList<QByteArray> longDump()
{
    constexpr qsizetype largestPart = 1200;
    QByteArray text;
    for (int i = 0; i < 20'000; ++i)
        text += "S  rule_variable_number_" + QByteArray::number(i) + " \"value " + QByteArray::number(i * 7) + "\"\n";
    for (const char *name : {"rcon_password", "sv_hostname", "sv_ranked", "playlist_enabled", "playlist_excludeMap",
                             "playlist_excludeGametype", "playlist_excludeGametypeMap"})
        text += QByteArray(name) + " \"0\"\n";
    QList<QByteArray> parts;
    for (qsizetype place = 0; place < text.size(); place += largestPart)
        parts.append(text.mid(place, largestPart));
    return parts;
}

static void measureStalls(Desk &desk)
{
    const auto server = startedServer({.players = 1000});
    Stalls stalls;
    double longestWork = 0;
    const auto tellOfPhase = [&](const char *name) {
        const double work = stalls.takeLongestWork();
        print(QLatin1String(name), {work});
        longestWork = std::max(longestWork, work);
    };
    desk.settleAt(server->port());
    tellOfPhase("work_connecting_ms");
    for (int i = 0; i < 5; ++i) {
        desk.press("refreshPlayersButton");
        desk.waitUntilIdle();
    }
    tellOfPhase("work_1000_players_ms");
    QByteArray configuration = QByteArray("// a line of comment, as such files have many\n").repeated(5000);
    for (int i = 0; i < 8; ++i)
        configuration += "set sv_hostname \"number " + QByteArray::number(i) + "\"\n";
    desk.loadConfiguration(configuration);
    tellOfPhase("work_loading_configuration_ms");
    desk.bringToFront("consoleView");
    desk.type("dvardump");
    desk.waitUntilIdle();
    tellOfPhase("work_console_ms");
    desk.leave();
    LoopbackServer longReplies([parts = longDump()](const QByteArray &) { return parts; });
    desk.connectTo(longReplies.port());
    waitFor(4s);
    desk.leave();
    tellOfPhase("work_dump_of_20000_lines_ms");
    print("stall_p999_ms", {stalls.quantile(0.999)});
    print("stall_longest_ms", {stalls.quantile(1)});
    print("stall_longest_work_ms", {longestWork});
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    Desk desk;
    if (QApplication::arguments().contains("stalls")) {
        measureStalls(desk);
        return 0;
    }
    measureTexts(desk);
    for (const milliseconds roundTrip : {2ms, 60ms}) {
        measureVariable(desk, roundTrip);
        measureKicks(desk, roundTrip, measureConnecting(desk, roundTrip));
    }
    measureConfiguration(desk);
    measureLeaving(desk);
    return 0;
}
