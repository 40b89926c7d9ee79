#include "Desk.h"
#include "LoopbackServer.h"
#include "Stalls.h"

#include <QApplication>
#include <QPlainTextEdit>
#include <QSet>
#include <QTableView>

#include <algorithm>
#include <random>
#include <utility>

// How long who sits before the window waits for the server: each figure a line "name value", times in milliseconds. It
// works the window's own controls, so that it also measures states of the project that it was not written with. The
// main loop is to stall for at most 8 ms in 99.9 % of its beats (stall_p999_ms).

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// When a text is appended to the transcript that contains another.
class Shown
{
public:
    Shown(Desk &desk, const QString &part)
    {
        m_noting =
            QObject::connect(&desk.server().console(), &Console::messageAppended, [this, part](const QString &text) {
                if (text.contains(part) && !text.startsWith("] "))
                    m_count += 1;
            });
    }
    ~Shown() { QObject::disconnect(m_noting); }
    Shown(const Shown &) = delete;
    Shown &operator=(const Shown &) = delete;

    bool isThere() const { return m_count > 0; }

private:
    QMetaObject::Connection m_noting;
    int m_count = 0;
};

/// Tells when the transcript is painted.
class Paints final : public QObject
{
public:
    explicit Paints(QWidget *viewport) { viewport->installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

    int count = 0;
};

/// What a server answers that knows every variable.
static QByteArray answerTo(const QByteArray &request)
{
    const QByteArray command = request.mid(5).chopped(1).mid(static_cast<qsizetype>(sizeof "demo"));
    if (command == "dvardump")
        return "S  rcon_password \"demo\"\nS  sv_ranked \"0\"\nS  playlist_enabled \"0\"\n\n3 total dvars\n";
    if (!command.contains(' ') && command != "status" && command != "teamstatus")
        return '"' + command + "\" is: \"none^7\" in force: \"none^7\"\n";
    return "one line\n";
}

static void measureText(Desk &desk)
{
    std::atomic<steady_clock::time_point> answered{};
    LoopbackServer server([&answered](const QByteArray &request) {
        answered = steady_clock::now();
        return QList<QByteArray>{answerTo(request)};
    });
    desk.connectTo(server.port());
    mustReach("the console", [&desk] { return desk.server().isConnected(); });
    waitFor([] { return false; }, 2s);
    desk.waitUntilIdle();
    desk.bringToFront("consoleView");
    auto *output = desk.find<QPlainTextEdit>("consoleOutput");
    QList<double> times;
    for (int i = 0; i < 21; ++i) {
        Paints paints(output->viewport());
        const Shown shown(desk, "one line");
        desk.type("status");
        mustReach("the text", [&shown] { return shown.isThere(); });
        const int before = paints.count;
        mustReach("the picture", [&] { return paints.count > before; });
        times.append(since(answered));
        desk.waitUntilIdle();
    }
    printSpread("datagram_to_text_ms", times);
    desk.bringToFront("playersView"); // from now on its list is fetched with each connect
    desk.leave();
}

static DemoOptions optionsOf(milliseconds roundTrip, bool isSparse)
{
    DemoOptions options;
    options.players = 64;
    options.frozen = true;
    options.sparse = isSparse;
    options.faults.delay = roundTrip;
    return options;
}

static QString named(const char *name, milliseconds roundTrip)
{
    return QStringLiteral("%1_rtt_%2_ms").arg(QLatin1String(name)).arg(roundTrip.count());
}

static void measureVariable(Desk &desk, milliseconds roundTrip)
{
    DemoServer server(optionsOf(roundTrip, false));
    startServer(server);
    desk.settleAt(server.port());
    QList<double> beyond;
    for (int i = 0; i < 21; ++i)
        beyond.append(desk.askForVariable() - static_cast<double>(roundTrip.count()));
    printSpread(named("variable_beyond", roundTrip), beyond);
    desk.leave();
}

/// The variables that were asked for by name.
static qsizetype askedFor(const DemoServer &server)
{
    QSet<QString> names;
    for (const QString &command : server.commandsSeen()) {
        if (!command.contains(QLatin1Char(' ')))
            names.insert(command);
    }
    return names.size();
}

/// What connecting to a server that knows next to nothing costs. @return how many variables it was asked for.
static qsizetype measureConnecting(Desk &desk, milliseconds roundTrip)
{
    DemoServer server(optionsOf(roundTrip, true));
    startServer(server);
    const int alerts = desk.alerts();
    const auto start = steady_clock::now();
    double rows = 0;
    double lastAsked = 0;
    double lastNews = 0;
    double typed = 0;
    double typedSeen = 0;
    qsizetype asked = 0;
    qsizetype seen = 0;
    desk.connectTo(server.port());
    mustReach("the end of all questions", [&] {
        const double now = since(start);
        if (rows == 0 && desk.playerRows() > 0)
            rows = now;
        if (typed == 0 && now >= 1000) { // in the middle
            typed = now;
            desk.type("say in the middle");
        }
        const QStringList commands = server.commandsSeen();
        if (std::exchange(seen, commands.size()) == commands.size())
            return now - lastNews > 2500 && desk.isIdle();
        lastNews = now;
        if (typedSeen == 0 && commands.contains("say in the middle"))
            typedSeen = now;
        if (const qsizetype names = askedFor(server); std::exchange(asked, names) != names)
            lastAsked = now;
        return false;
    });
    print(named("connect_to_player_rows", roundTrip), rows);
    print(named("last_variable_asked", roundTrip), lastAsked);
    print(named("variables_asked", roundTrip), static_cast<double>(asked));
    print(named("requests", roundTrip), static_cast<double>(seen));
    print(named("alerts", roundTrip), desk.alerts() - alerts);
    print(named("typed_in_the_middle_to_server", roundTrip), typedSeen - typed);
    desk.leave();
    return rows < lastAsked / 2 ? asked : 0;
}

/// Until no list of players is under way, whose end only silence tells: what is left to wait for is a variable.
static void waitUntilNoList(const DemoServer &server, milliseconds pause)
{
    const auto lists = [&server] {
        return server.commandsSeen().count("teamstatus");
    };
    qsizetype seen = lists();
    auto latest = steady_clock::now();
    mustReach("the end of the list", [&] {
        if (const qsizetype now = lists(); std::exchange(seen, now) != now)
            latest = steady_clock::now();
        return steady_clock::now() - latest > 700ms + pause;
    });
}

/// @param names  that the server is asked for; none where no list of players is there while they are asked for.
static void measureKicks(Desk &desk, milliseconds roundTrip, qsizetype names)
{
    constexpr int enough = 20;
    QList<double> times;
    std::mt19937 random(7);
    for (int connects = 0; names > 0 && times.size() < enough && connects < 5; ++connects) {
        DemoServer server(optionsOf(roundTrip, true));
        startServer(server);
        desk.connectTo(server.port());
        mustReach("players", [&desk] { return desk.playerRows() > 0; });
        while (times.size() < enough) {
            const qsizetype lists = server.commandsSeen().count("teamstatus");
            desk.press("refreshPlayersButton"); // a kick reads an old list anew
            mustReach("a new list", [&] { return server.commandsSeen().count("teamstatus") > lists; });
            waitUntilNoList(server, milliseconds(random() % 300));
            if (askedFor(server) + 5 > names)
                break;
            desk.find<QTableView>("playersTableView")->selectRow(0);
            const Shown shown(desk, "was kicked");
            const auto start = steady_clock::now();
            desk.press("kickPlayerButton");
            mustReach("the kick", [&shown] { return shown.isThere(); });
            times.append(since(start));
        }
        desk.leave();
    }
    printSpread(named("kick_in_the_middle_to_reply_shown", roundTrip), times);
}

/// What the server holds, so that every write is answered with nothing.
static QByteArray configurationOf(const QHash<QString, QString> &held, int *count)
{
    // What the demo server lets nobody write it answers with a text, whose end only silence tells.
    static const QSet<QString> unwritable{"game_title",  "mapname",   "line_address", "protocol",
                                          "door_places", "sv_ranked", "version",      "rcon_password"};
    QStringList names = held.keys();
    names.sort();
    QByteArray text;
    for (const QString &name : std::as_const(names)) {
        const QString value = held.value(name);
        const bool isPlain = !value.contains(u'"') && !value.contains(u'\n');
        if (*count == 200 || unwritable.contains(name) || !isPlain)
            continue;
        text += QStringLiteral("%1 \"%2\"\n").arg(name, value).toUtf8();
        ++*count;
    }
    return text;
}

static void measureConfiguration(Desk &desk)
{
    const milliseconds roundTrip = 50ms;
    DemoServer server(optionsOf(roundTrip, false));
    startServer(server);
    desk.settleAt(server.port());
    int count = 0;
    const QByteArray text = configurationOf(desk.server().dvarList(), &count);
    print("configuration_settings", count);
    print(named("configuration", roundTrip), desk.loadConfiguration(text));
    print("configuration_writes", static_cast<double>(server.commandsSeen().filter("setadmindvar").size()));
    desk.leave();
}

/// Leaves a server that has fallen silent in the middle of a command.
static double leaveDuringCommand(Desk &desk, const std::function<void()> &leave)
{
    DemoServer server(optionsOf(2ms, false));
    startServer(server);
    desk.settleAt(server.port());
    DemoFaults silence;
    silence.silent = true;
    server.setFaults(silence);
    desk.type("status");
    mustReach("the command", [&server] { return server.commandsSeen().contains("status"); });
    waitFor([] { return false; }, 100ms);
    const auto start = steady_clock::now();
    leave();
    return since(start);
}

static void measureLeaving(Desk &desk)
{
    QList<double> times;
    for (int i = 0; i < 3; ++i)
        times.append(leaveDuringCommand(desk, [&desk] { desk.leave(); }));
    printSpread("disconnect_ms", times);
    FormMainView &window = desk.window();
    print("close_ms", leaveDuringCommand(desk, [&window] {
              window.close();
              mustReach("closing", [&window] { return !window.isVisible(); });
          }));
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
    DemoOptions options;
    options.players = 1000;
    DemoServer server(options);
    startServer(server);
    Stalls stalls;
    double longestWork = 0;
    const auto tellOfPhase = [&](const char *name) {
        const double work = stalls.takeLongestWork();
        print(QLatin1String(name), work);
        longestWork = std::max(longestWork, work);
    };
    stalls.start();
    desk.settleAt(server.port());
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
    waitFor([] { return false; }, 4s);
    stalls.stop();
    desk.leave();
    tellOfPhase("work_dump_of_20000_lines_ms");
    print("stall_p999_ms", stalls.quantile(0.999));
    print("stall_longest_ms", stalls.longest());
    print("stall_longest_work_ms", longestWork);
    print("stall_beats", static_cast<double>(stalls.beats()));
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    Desk desk;
    const QStringList wanted = QApplication::arguments().mid(1); // parts, or none for all
    const auto isWanted = [&wanted](const char *part) {
        return wanted.isEmpty() || wanted.contains(QLatin1String(part));
    };
    if (isWanted("text"))
        measureText(desk);
    for (const milliseconds roundTrip : {2ms, 60ms}) {
        if (isWanted("variable"))
            measureVariable(desk, roundTrip);
        if (!isWanted("connect"))
            continue;
        const qsizetype names = measureConnecting(desk, roundTrip);
        measureKicks(desk, roundTrip, names);
    }
    if (isWanted("configuration"))
        measureConfiguration(desk);
    if (isWanted("stalls"))
        measureStalls(desk);
    if (isWanted("leave"))
        measureLeaving(desk);
    return 0;
}
