#include "AppDelegate.h"
#include "ConfigurationLoading.h"
#include "Controls.h"
#include "DemoServer.h"
#include "FormMainView.h"
#include "KelServer.h"
#include "LoopbackServer.h"
#include "ProgressWindowController.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QTabWidget>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <utility>

// How long who sits before the window waits for the server: each figure a line "name value", times in milliseconds. It
// works the window's own controls, so that it also measures states of the project that it was not written with.

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

static constexpr milliseconds longestWait = 10min;

static void print(const QString &name, double value)
{
    std::printf("%s %.1f\n", qPrintable(name), value);
    std::fflush(stdout);
}

static void printSpread(const QString &name, QList<double> values)
{
    std::sort(values.begin(), values.end());
    if (values.isEmpty()) {
        std::printf("%s none\n", qPrintable(name));
        return;
    }
    std::printf("%s median %.1f worst %.1f of %d\n", qPrintable(name), values.at(values.size() / 2), values.last(),
                static_cast<int>(values.size()));
    std::fflush(stdout);
}

static double since(steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
}

/// The event loop runs without a break, and looks each millisecond.
static bool waitFor(const std::function<bool()> &isReached, milliseconds most = longestWait)
{
    QTimer beat;
    beat.setTimerType(Qt::PreciseTimer);
    beat.start(1ms);
    const auto start = steady_clock::now();
    while (!isReached() && steady_clock::now() - start < most)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return isReached();
}

static void mustReach(const char *what, const std::function<bool()> &isReached)
{
    if (!waitFor(isReached))
        qFatal("%s does not happen", what);
}

/// Answers every alert as soon as it stands, and counts them.
class Dismissal final : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (auto *box = qobject_cast<QMessageBox *>(watched); box != nullptr && event->type() == QEvent::Show) {
            ++count;
            QTimer::singleShot(0, box, [box] { box->buttons().constFirst()->click(); });
        }
        return false;
    }

    int count = 0;
};

/// The window, and what its user does.
class Desk
{
public:
    explicit Desk(AppDelegate &delegate) : m_delegate(delegate) {}

    AppDelegate &delegate() { return m_delegate; }
    template <typename Control>
    Control *find(const char *name)
    {
        return control<Control>(m_delegate.window(), name);
    }

    void connectTo(quint16 port)
    {
        m_delegate.window().connectTo(ConnectTarget{QStringLiteral("Bench"), QStringLiteral("127.0.0.1"),
                                                    QString::number(port), QStringLiteral("demo"), nullptr});
    }
    void press(const char *name)
    {
        auto *button = find<QPushButton>(name);
        if (!button->isEnabled())
            qFatal("%s cannot be pressed", name);
        button->click();
    }
    void bringToFront(const char *page) { find<QTabWidget>("tabControlMain")->setCurrentWidget(find<QWidget>(page)); }
    void type(const QString &line)
    {
        auto *input = find<QLineEdit>("consoleInput");
        input->setText(line);
        QKeyEvent pressed(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(input, &pressed);
    }
    int playerRows() { return find<QTableView>("playersTableView")->model()->rowCount(); }
    void waitUntilIdle()
    {
        mustReach("the end of all actions", [this] { return m_delegate.actions().isIdle(); });
    }
    void leave()
    {
        press("disconnectButton");
        waitUntilIdle();
    }

private:
    AppDelegate &m_delegate;
};

/// When a text is appended to the transcript that contains another.
class Shown
{
public:
    Shown(Desk &desk, const QString &part)
    {
        m_noting = QObject::connect(&desk.delegate().server().console(), &Console::messageAppended,
                                    [this, part](const QString &text) {
                                        if (text.contains(part) && !text.startsWith(QLatin1String("] ")))
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

static QByteArray framed(const QByteArray &text)
{
    return "\xff\xff\xff\xff\x01print\n" + text;
}

static QByteArray toldVariable(const QByteArray &name)
{
    return '"' + name + "\" is: \"none^7\" in force: \"none^7\"\n";
}

/// Knows every variable, answers in no time, and notes when it did.
class InstantServer
{
public:
    quint16 port() const { return m_server.port(); }
    steady_clock::time_point lastAnswer() const { return m_lastAnswer; }

private:
    void answer(const QByteArray &request)
    {
        const QByteArray command = request.mid(5).chopped(1).mid(static_cast<qsizetype>(sizeof "demo"));
        QByteArray reply = "one line\n";
        if (command == "dvardump")
            reply = "S  rcon_password \"demo\"\nS  sv_ranked \"0\"\nS  playlist_enabled \"0\"\n\n3 total dvars\n";
        else if (!command.contains(' ') && command != "status" && command != "teamstatus")
            reply = toldVariable(command);
        m_lastAnswer = steady_clock::now();
        m_server.answer(framed(reply));
    }

    std::atomic<steady_clock::time_point> m_lastAnswer{};
    LoopbackServer m_server{[this](const QByteArray &request) {
        answer(request);
    }};
};

static void measureText(Desk &desk)
{
    InstantServer server;
    desk.connectTo(server.port());
    mustReach("the console", [&desk] { return desk.delegate().server().isConnected(); });
    waitFor([] { return false; }, 2s);
    desk.waitUntilIdle();
    desk.bringToFront("consoleView");
    auto *output = desk.find<QPlainTextEdit>("consoleOutput");
    QList<double> times;
    for (int i = 0; i < 21; ++i) {
        Paints paints(output->viewport());
        const Shown shown(desk, QStringLiteral("one line"));
        desk.type(QStringLiteral("status"));
        mustReach("the text", [&shown] { return shown.isThere(); });
        const int before = paints.count;
        mustReach("the picture", [&] { return paints.count > before; });
        times.append(since(server.lastAnswer()));
        desk.waitUntilIdle();
    }
    printSpread(QStringLiteral("datagram_to_text_ms"), times);
    desk.bringToFront("playersView"); // from now on its list is fetched with each connect
    desk.leave();
}

static QCoro::Task<> ask(KelServer *server, bool *isDone)
{
    const QString line = QStringLiteral("sv_hostname");
    const Reply reply = co_await server->sendCommand(line);
    if (!reply.isSuccess())
        qFatal("the exchange failed");
    *isDone = true;
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

static void begin(DemoServer &server)
{
    QString error;
    if (!server.start(&error))
        qFatal("%s", qPrintable(error));
}

static QString named(const char *name, milliseconds roundTrip)
{
    return QStringLiteral("%1_rtt_%2_ms").arg(QLatin1String(name)).arg(roundTrip.count());
}

static void measureVariable(Desk &desk, milliseconds roundTrip)
{
    DemoServer server(optionsOf(roundTrip, false));
    begin(server);
    desk.connectTo(server.port());
    mustReach("players", [&desk] { return desk.playerRows() > 0; });
    waitFor([] { return false; }, 2s);
    desk.waitUntilIdle();
    QList<double> beyond;
    for (int i = 0; i < 21; ++i) {
        bool isDone = false;
        const auto start = steady_clock::now();
        const QCoro::Task<> detached = ask(&desk.delegate().server(), &isDone);
        mustReach("the reply", [&isDone] { return isDone; });
        beyond.append(since(start) - static_cast<double>(roundTrip.count()));
    }
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
static qsizetype measureConnecting(Desk &desk, Dismissal &alerts, milliseconds roundTrip)
{
    DemoServer server(optionsOf(roundTrip, true));
    begin(server);
    alerts.count = 0;
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
            desk.type(QStringLiteral("say in the middle"));
        }
        const QStringList commands = server.commandsSeen();
        if (std::exchange(seen, commands.size()) == commands.size())
            return now - lastNews > 2500 && desk.delegate().actions().isIdle();
        lastNews = now;
        if (typedSeen == 0 && commands.contains(QLatin1String("say in the middle")))
            typedSeen = now;
        if (const qsizetype names = askedFor(server); std::exchange(asked, names) != names)
            lastAsked = now;
        return false;
    });
    print(named("connect_to_player_rows", roundTrip), rows);
    print(named("last_variable_asked", roundTrip), lastAsked);
    print(named("variables_asked", roundTrip), static_cast<double>(asked));
    print(named("requests", roundTrip), static_cast<double>(seen));
    print(named("alerts", roundTrip), alerts.count);
    print(named("typed_in_the_middle_to_server", roundTrip), typedSeen - typed);
    desk.leave();
    return rows < lastAsked / 2 ? asked : 0;
}

/// Until no list of players is under way, whose end only silence tells: what is left to wait for is a variable.
static void waitUntilNoList(const DemoServer &server, milliseconds pause)
{
    const auto lists = [&server] {
        return server.commandsSeen().count(QLatin1String("teamstatus"));
    };
    qsizetype seen = lists();
    auto latest = steady_clock::now();
    waitFor([&] {
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
        begin(server);
        desk.connectTo(server.port());
        mustReach("players", [&desk] { return desk.playerRows() > 0; });
        while (times.size() < enough) {
            const qsizetype lists = server.commandsSeen().count(QLatin1String("teamstatus"));
            desk.press("refreshPlayersButton"); // a kick reads an old list anew
            mustReach("a new list", [&] { return server.commandsSeen().count(QLatin1String("teamstatus")) > lists; });
            waitUntilNoList(server, milliseconds(random() % 300));
            if (askedFor(server) + 5 > names)
                break;
            desk.find<QTableView>("playersTableView")->selectRow(0);
            const Shown shown(desk, QStringLiteral("was kicked"));
            const auto start = steady_clock::now();
            desk.press("kickPlayerButton");
            mustReach("the kick", [&shown] { return shown.isThere(); });
            times.append(since(start));
        }
        desk.leave();
    }
    printSpread(named("kick_in_the_middle_to_reply_shown", roundTrip), times);
}

class SilentAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString title, QString text, QStringList, AlertManner) override
    {
        qFatal("alert: %s: %s", qPrintable(title), qPrintable(text));
        co_return 0;
    }
};

static QCoro::Task<> load(ConfigurationLoading *loading, QString path)
{
    co_await loading->loadFile(path);
}

/// Writes what the server holds, so that every write is answered with nothing.
static int writeConfiguration(const QHash<QString, QString> &held, QFile &file)
{
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no file");
    // What the demo server lets nobody write it answers with a text, whose end only silence tells.
    static const QSet<QString> unwritable{"gamename",      "mapname",   "net_ip",  "protocol",
                                          "sv_maxclients", "sv_ranked", "version", "rcon_password"};
    QStringList names = held.keys();
    names.sort();
    int count = 0;
    for (const QString &name : std::as_const(names)) {
        const QString value = held.value(name);
        const bool isPlain = !value.contains(QLatin1Char('"')) && !value.contains(QLatin1Char('\n'));
        if (count == 200 || unwritable.contains(name) || !isPlain)
            continue;
        file.write(QStringLiteral("%1 \"%2\"\n").arg(name, value).toUtf8());
        ++count;
    }
    file.close();
    return count;
}

static void measureConfiguration(Desk &desk, const QTemporaryDir &folder)
{
    const milliseconds roundTrip = 50ms;
    DemoServer server(optionsOf(roundTrip, false));
    begin(server);
    desk.connectTo(server.port());
    mustReach("players", [&desk] { return desk.playerRows() > 0; });
    waitFor([] { return false; }, 3s);
    desk.waitUntilIdle();
    AppDelegate &delegate = desk.delegate();
    QFile file(folder.filePath(QStringLiteral("bench.cfg")));
    print(QStringLiteral("configuration_settings"), writeConfiguration(delegate.server().dvarList(), file));
    SilentAlerts alerts;
    ProgressWindowController progress(&delegate.window());
    ConfigurationLoading loading(delegate.server(), delegate.actions(), alerts, progress);
    const auto start = steady_clock::now();
    delegate.actions().start(load(&loading, file.fileName()));
    desk.waitUntilIdle();
    print(named("configuration", roundTrip), since(start));
    const QStringList seen = server.commandsSeen();
    const auto isWrite = [](const QString &command) {
        return command.startsWith(QLatin1String("setadmindvar"));
    };
    print(QStringLiteral("configuration_writes"),
          static_cast<double>(std::count_if(seen.begin(), seen.end(), isWrite)));
    desk.leave();
}

/// Leaves a server that has fallen silent in the middle of a command.
static double leaveDuringCommand(Desk &desk, const std::function<void()> &leave)
{
    DemoServer server(optionsOf(2ms, false));
    begin(server);
    desk.connectTo(server.port());
    mustReach("players", [&desk] { return desk.playerRows() > 0; });
    waitFor([] { return false; }, 2s);
    desk.waitUntilIdle();
    DemoFaults silence;
    silence.silent = true;
    server.setFaults(silence);
    desk.type(QStringLiteral("status"));
    mustReach("the command", [&server] { return server.commandsSeen().contains(QLatin1String("status")); });
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
    printSpread(QStringLiteral("disconnect_ms"), times);
    FormMainView &window = desk.delegate().window();
    print(QStringLiteral("close_ms"), leaveDuringCommand(desk, [&window] {
              window.close();
              mustReach("closing", [&window] { return !window.isVisible(); });
          }));
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    AppDelegate delegate({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
    Dismissal alerts;
    application.installEventFilter(&alerts);
    delegate.window().show();
    Desk desk(delegate);
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
        const qsizetype names = measureConnecting(desk, alerts, roundTrip);
        measureKicks(desk, roundTrip, names);
    }
    if (isWanted("configuration"))
        measureConfiguration(desk, folder);
    if (isWanted("leave"))
        measureLeaving(desk);
    return 0;
}
