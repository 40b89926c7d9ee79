#include "AppDelegate.h"
#include "ConfigurationLoading.h"
#include "Controls.h"
#include "DemoServer.h"
#include "FormMainView.h"
#include "KelServer.h"
#include "LongReplyServer.h"
#include "ProgressWindowController.h"
#include "Stalls.h"
#include "TranscriptView.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

// What the console costs beyond what the protocol itself waits: each figure a line "name value". The main loop is to
// stall for at most 8 ms in 99.9 % of its beats (stall_p999_ms).

static void print(const char *name, double value)
{
    std::printf("%s %.3f\n", name, value);
    std::fflush(stdout);
}

static double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

static double milliseconds(const QElapsedTimer &clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

static double residentKib()
{
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Rss:"))
            return line.mid(4).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

/// Answers every alert as soon as it stands.
class Dismissal final : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (auto *box = qobject_cast<QMessageBox *>(watched); box != nullptr && event->type() == QEvent::Show)
            QTimer::singleShot(0, box, [box] { box->buttons().constFirst()->click(); });
        return false;
    }
};

/// The event loop runs without a break; QTest's own waiting sleeps for 10 ms at a time, which would count as stalls.
static void waitFor(const std::function<bool()> &isReached, int milliseconds)
{
    QTimer end; // which also wakes a loop that nothing else happens in
    end.setSingleShot(true);
    end.start(milliseconds);
    while (!isReached() && end.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

static void waitUntilIdle(AppDelegate &delegate)
{
    waitFor([&] { return delegate.actions().isIdle(); }, 600000);
    if (!delegate.actions().isIdle())
        qFatal("an action does not end");
}

static ConnectTarget targetOf(quint16 port)
{
    return ConnectTarget{QStringLiteral("Bench"), QStringLiteral("127.0.0.1"), QString::number(port),
                         QStringLiteral("demo"), nullptr};
}

/// The protocol ends every reply by 500 ms of silence.
static double waitsOf(qsizetype exchanges)
{
    return 500.0 * static_cast<double>(exchanges);
}

static void measureConnect(AppDelegate &delegate, const DemoServer &server)
{
    const qsizetype before = server.commandsSeen().size();
    QElapsedTimer clock;
    double time = 0;
    qsizetype exchanges = 0;
    // Noted at once: the window goes on with exchanges of its own.
    const auto noting = QObject::connect(&delegate.server(), &KelServer::didConnect, &delegate, [&] {
        time = milliseconds(clock);
        exchanges = server.commandsSeen().size() - before;
    });
    clock.start();
    delegate.window().connectTo(targetOf(server.port()));
    waitFor([&] { return exchanges > 0; }, 600000);
    QObject::disconnect(noting);
    if (exchanges == 0)
        qFatal("no connection");
    print("connect_beyond_waits_ms", time - waitsOf(exchanges));
    print("connect_exchanges", static_cast<double>(exchanges));
    waitUntilIdle(delegate);
}

static QCoro::Task<> request(KelServer *server, bool *isDone)
{
    const QString line = QStringLiteral("sv_hostname");
    const Reply reply = co_await server->sendCommand(line);
    if (!reply.isSuccess())
        qFatal("the exchange failed");
    *isDone = true;
}

static void measureExchange(AppDelegate &delegate)
{
    QList<double> beyond;
    for (int i = 0; i < 15; ++i) {
        bool isDone = false;
        QElapsedTimer clock;
        clock.start();
        const QCoro::Task<> detached = request(&delegate.server(), &isDone);
        waitFor([&] { return isDone; }, 600000);
        beyond.append(milliseconds(clock) - 500.0);
    }
    print("exchange_beyond_waits_ms", median(beyond));
}

static void press(AppDelegate &delegate, const char *name)
{
    auto *button = control<QPushButton>(delegate.window(), name);
    if (!button->isEnabled())
        qFatal("%s cannot be pressed", name);
    button->click();
}

static void refreshPlayers(AppDelegate &delegate)
{
    for (int i = 0; i < 5; ++i) {
        press(delegate, "refreshPlayersButton");
        waitUntilIdle(delegate);
    }
}

static void typeCommand(AppDelegate &delegate, const QString &line)
{
    const QWidget &window = delegate.window();
    control<QTabWidget>(window, "tabControlMain")->setCurrentWidget(control<QWidget>(window, "consoleView"));
    auto *input = control<QLineEdit>(window, "consoleInput");
    input->setText(line);
    QTest::keyClick(input, Qt::Key_Return);
    waitUntilIdle(delegate);
}

static QCoro::Task<> load(ConfigurationLoading *loading, QString path)
{
    co_await loading->loadFile(path);
}

static void loadConfiguration(AppDelegate &delegate, const QTemporaryDir &folder, Alerts &alerts)
{
    QFile file(folder.filePath(QStringLiteral("bench.cfg")));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("no file");
    for (int i = 0; i < 5000; ++i)
        file.write("// a line of comment, as such files have many\n");
    for (int i = 0; i < 8; ++i)
        file.write("set sv_hostname \"number " + QByteArray::number(i) + "\"\n");
    file.close();
    ProgressWindowController progress(&delegate.window());
    ConfigurationLoading loading(delegate.server(), delegate.actions(), alerts, progress);
    delegate.actions().start(load(&loading, file.fileName()));
    waitUntilIdle(delegate);
}

/// A key that comes from the display, to the field that has the focus, until its letter has been painted.
static void measureKey(QWidget &window)
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    auto *field = control<QLineEdit>(window, "hostField");
    xcb_connection_t *display = native == nullptr ? nullptr : xcb_connect(nullptr, nullptr);
    if (display == nullptr)
        return;
    window.activateWindow();
    field->setFocus();
    QTest::qWait(200);
    QList<double> times;
    for (int i = 0; i < 41; ++i) {
        xcb_key_press_event_t press{};
        press.response_type = XCB_KEY_PRESS;
        press.detail = 10 + static_cast<xcb_keycode_t>(i % 9); // the digits, where the keyboards of PCs have them
        press.event = static_cast<xcb_window_t>(window.winId());
        press.root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
        press.same_screen = 1;
        const QString before = field->text();
        QElapsedTimer clock;
        clock.start();
        xcb_send_event(display, 0, press.event, XCB_EVENT_MASK_KEY_PRESS, reinterpret_cast<const char *>(&press));
        xcb_flush(display);
        while (field->text() == before && clock.elapsed() < 2000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        QCoreApplication::sendPostedEvents(); // the field is painted
        std::free(xcb_get_input_focus_reply(native->connection(), xcb_get_input_focus(native->connection()), nullptr));
        if (field->text() != before)
            times.append(milliseconds(clock));
        QTest::qWait(20);
    }
    field->clear();
    xcb_disconnect(display);
    print("key_to_echo_ms", median(times));
    print("key_to_echo_samples", static_cast<double>(times.size()));
}

/// A million lines: the view keeps the newest 200,000.
static void measureTranscript()
{
    TranscriptView transcript;
    transcript.resize(900, 600);
    transcript.show();
    QString block;
    for (int i = 0; i < 1000; ++i)
        block += QStringLiteral("line %1 of a long evening on the console, with a reply of ordinary length\n").arg(i);
    const double before = residentKib();
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 1000; ++i)
        transcript.appendConsoleMessage(block);
    print("transcript_million_lines_ms", milliseconds(clock));
    print("transcript_memory_kib", residentKib() - before);
    clock.start();
    transcript.appendConsoleMessage(block.repeated(20));
    print("transcript_20000_lines_ms", milliseconds(clock));
    QList<double> times;
    for (int i = 0; i < 41; ++i) {
        clock.start();
        transcript.appendConsoleMessage(QStringLiteral("] status\nmap: mp_harbour\n"));
        transcript.grab();
        times.append(milliseconds(clock));
    }
    print("transcript_append_ms", median(times));
}

static QByteArray dumpOf(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i)
        text += "S  scr_variable_number_" + QByteArray::number(i) + " \"value " + QByteArray::number(i * 7) + "\"\n";
    for (const char *name : {"rcon_password", "sv_hostname", "sv_ranked", "playlist_enabled", "playlist_excludeMap",
                             "playlist_excludeGametype", "playlist_excludeGametypeMap"})
        text += QByteArray(name) + " \"0\"\n";
    return text;
}

static void measureExchanges(AppDelegate &delegate, const QTemporaryDir &folder, Alerts &alerts)
{
    DemoOptions options;
    options.players = 1000;
    DemoServer server(options);
    QString error;
    if (!server.start(&error))
        qFatal("%s", qPrintable(error));
    Stalls stalls;
    double longestWork = 0;
    const auto tellOfPhase = [&](const char *name) {
        const double work = stalls.takeLongestWork();
        print(name, work);
        longestWork = std::max(longestWork, work);
    };
    stalls.start();
    measureConnect(delegate, server);
    tellOfPhase("work_connecting_ms");
    refreshPlayers(delegate);
    tellOfPhase("work_1000_players_ms");
    loadConfiguration(delegate, folder, alerts);
    tellOfPhase("work_loading_configuration_ms");
    typeCommand(delegate, QStringLiteral("dvardump"));
    measureExchange(delegate);
    tellOfPhase("work_console_ms");
    press(delegate, "disconnectButton");
    LongReplyServer longReplies(dumpOf(20000));
    delegate.window().connectTo(targetOf(longReplies.port()));
    waitFor([] { return false; }, 4000);
    stalls.stop();
    press(delegate, "disconnectButton");
    waitUntilIdle(delegate);
    tellOfPhase("work_dump_of_20000_lines_ms");
    print("stall_p999_ms", stalls.quantile(0.999));
    print("stall_longest_ms", stalls.quantile(1));
    print("stall_longest_work_ms", longestWork);
    print("stall_beats", static_cast<double>(stalls.beats()));
}

class SilentAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString title, QString text, QStringList buttons, AlertManner) override
    {
        std::fprintf(stderr, "alert: %s: %s\n", qPrintable(title), qPrintable(text));
        co_return static_cast<int>(buttons.size()) - 1;
    }
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    AppDelegate delegate({folder.filePath(QStringLiteral("preferences.ini")), {}, folder.path()});
    SilentAlerts alerts;
    Dismissal dismissal;
    application.installEventFilter(&dismissal);
    delegate.window().show();
    QTest::qWait(300);
    measureKey(delegate.window());
    measureExchanges(delegate, folder, alerts);
    measureTranscript();
    return 0;
}
