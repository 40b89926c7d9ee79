#include "Desk.h"
#include "LoopbackServer.h"
#include "Stalls.h"
#include "TranscriptView.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdlib>

// What the window at work costs: each figure a line "name value". The main loop is to stall for at most 8 ms in 99.9 %
// of its beats (stall_p999_ms).

using namespace std::chrono_literals;
using std::chrono::steady_clock;

static double residentKib()
{
    QFile file("/proc/self/smaps_rollup");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Rss:"))
            return line.mid(4).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

/// A key that comes from the display, to the field that has the focus, until its letter has been painted.
static void measureKey(Desk &desk)
{
    const auto *native = qApp->nativeInterface<QNativeInterface::QX11Application>();
    auto *field = desk.find<QLineEdit>("hostField");
    xcb_connection_t *display = native == nullptr ? nullptr : xcb_connect(nullptr, nullptr);
    if (display == nullptr)
        return;
    desk.window().activateWindow();
    field->setFocus();
    QTest::qWait(200);
    QList<double> times;
    for (int i = 0; i < 41; ++i) {
        xcb_key_press_event_t press{};
        press.response_type = XCB_KEY_PRESS;
        press.detail = 10 + static_cast<xcb_keycode_t>(i % 9); // the digits, where the keyboards of PCs have them
        press.event = static_cast<xcb_window_t>(desk.window().winId());
        press.root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
        press.same_screen = 1;
        const QString before = field->text();
        const auto start = steady_clock::now();
        xcb_send_event(display, 0, press.event, XCB_EVENT_MASK_KEY_PRESS, reinterpret_cast<const char *>(&press));
        xcb_flush(display);
        while (field->text() == before && since(start) < 2000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        QCoreApplication::sendPostedEvents(); // the field is painted
        std::free(xcb_get_input_focus_reply(native->connection(), xcb_get_input_focus(native->connection()), nullptr));
        if (field->text() != before)
            times.append(since(start));
        QTest::qWait(20);
    }
    field->clear();
    xcb_disconnect(display);
    printSpread("key_to_echo_ms", times);
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
    auto start = steady_clock::now();
    for (int i = 0; i < 1000; ++i)
        transcript.appendConsoleMessage(block);
    print("transcript_million_lines_ms", since(start));
    print("transcript_memory_kib", residentKib() - before);
    start = steady_clock::now();
    transcript.appendConsoleMessage(block.repeated(20));
    print("transcript_20000_lines_ms", since(start));
    QList<double> times;
    for (int i = 0; i < 41; ++i) {
        start = steady_clock::now();
        transcript.appendConsoleMessage("] status\nmap: mp_harbour\n");
        transcript.grab();
        times.append(since(start));
    }
    printSpread("transcript_append_ms", times);
}

/// The parts of a dump of 20,000 variables.
static QList<QByteArray> longDump()
{
    constexpr qsizetype largestPart = 1200;
    QByteArray text;
    for (int i = 0; i < 20'000; ++i)
        text += "S  scr_variable_number_" + QByteArray::number(i) + " \"value " + QByteArray::number(i * 7) + "\"\n";
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
    QTest::qWait(300);
    measureKey(desk);
    measureStalls(desk);
    measureTranscript();
    return 0;
}
