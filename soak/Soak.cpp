#include "Soak.h"

#include "AppDelegate.h"
#include "Controls.h"
#include "FormMainView.h"
#include "GameServers.h"
#include "KelMessageRotation.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>
#include <cstdio>
#include <utility>

static constexpr double loss = 0.1;
static constexpr qint64 patience = 300'000; // milliseconds; loading a long configuration comes to its end by then
static constexpr double secondsBetweenSamples = 10;

Soak::Soak(AppDelegate &application, GameServers &servers, const Plan &plan)
    : m_application(application), m_servers(servers), m_plan(plan),
      m_watch(*KelMessageRotation::sharedKelMessageRotation(), application),
      m_hand(application, servers, m_watch, plan.folder, plan.seed),
      m_record(QDir(plan.folder).filePath(QStringLiteral("log.txt")))
{
}

/// Lets the window live for a while.
static void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
    // What was closed by a press outside the loop would wait for its end for ever.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool Soak::perform()
{
    m_clock.start();
    if (!begin())
        return false;
    std::printf("%8s %9s %9s %7s %7s %7s\n", "seconds", "RSS KiB", "heap KiB", "handles", "threads", "objects");
    while (seconds() < m_plan.seconds) {
        work(std::min(seconds() + m_plan.secondsBetweenRests, m_plan.seconds));
        if (!rest())
            break;
    }
    end();
    printCounts();
    const bool isSteady = printGrowth();
    for (const QString &fault : std::as_const(m_faults))
        std::printf("FAULT: %s\n", qPrintable(fault));
    std::printf("%s\n", isSteady && m_faults.isEmpty() ? "passed" : "FAILED");
    return isSteady && m_faults.isEmpty();
}

bool Soak::begin()
{
    FormMainView &window = m_application.window();
    window.show();
    if (!m_hand.connectTo(0) || !waitUntil([this] { return isConnectedAndIdle(); })) {
        report(QStringLiteral("the first connect does not come to its end"));
        return false;
    }
    control<QSpinBox>(window, "autoUpdatePlayersTime")->setValue(2);
    control<QAbstractButton>(window, "autoUpdatePlayers")->setChecked(true);
    control<QSpinBox>(window, "autoupdateMapsInterval")->setValue(3);
    control<QAbstractButton>(window, "autoupdateMaps")->setChecked(true);
    return true;
}

void Soak::work(double untilSeconds)
{
    m_servers.setLine(loss, m_plan.throttle);
    m_heartbeat.start();
    while (seconds() < untilSeconds) {
        stopOrStartServer();
        m_hand.act();
        m_heartbeat.beginAnew(); // several key strokes at once are the hand's doing
        wait(80 + m_hand.below(320));
        if (seconds() >= m_nextSample)
            takeSample();
    }
    m_heartbeat.stop();
    if (const int server = std::exchange(m_stopped, -1); server >= 0)
        m_servers.comeBack(server);
    m_servers.setLine(0, 0);
}

/// A server that goes away comes back after some seconds, in which the hand goes on.
void Soak::stopOrStartServer()
{
    constexpr double secondsAway = 8;
    if (m_plan.secondsBetweenStops <= 0 || seconds() < m_nextStop)
        return;
    m_nextStop = seconds() + (m_stopped < 0 ? secondsAway : m_plan.secondsBetweenStops);
    if (m_stopped >= 0) {
        m_servers.comeBack(std::exchange(m_stopped, -1));
        return;
    }
    m_stopped = serverInUse();
    if (m_stopped >= 0)
        m_servers.stop(m_stopped);
}

void Soak::takeSample()
{
    m_nextSample = seconds() + secondsBetweenSamples;
    Gauge gauge = Gauge::read(m_application.window());
    gauge.seconds = seconds();
    m_samples.append(gauge);
    std::printf("%8.0f %9lld %9lld %7lld %7lld %7lld\n", gauge.seconds, gauge.residentKiB, gauge.heapKiB, gauge.handles,
                gauge.threads, gauge.objects);
    std::fflush(stdout);
}

/// How much of it there is tells nothing about what the console keeps.
void Soak::forgetWhatGrowsByDesign()
{
    QPixmapCache::clear(); // pictures of what was drawn, up to 10 MB
    // A field remembers every key for its undo until it gets another text. Those that are emptied by the console
    // forget.
    for (QLineEdit *field : m_application.window().findChildren<QLineEdit *>()) {
        if (field->objectName() == QLatin1String("consoleInput") ||
            field->objectName() == QLatin1String("messageTextField"))
            continue;
        const QSignalBlocker blocker(field);
        field->setText(field->text());
    }
}

bool Soak::rest()
{
    if (!settle()) {
        report(QStringLiteral("what was begun does not come to its end"));
        return false;
    }
    {
        // Kept no longer than it is looked at, as what the console holds is measured.
        const QList<RecordedExchange> exchanges = m_record.take();
        lookAtWrites(exchanges);
        lookAtTraffic(exchanges);
        lookAtMessages(exchanges);
    }
    if (!connectAnew()) {
        report(QStringLiteral("a connect over a good line does not come to its end"));
        return false;
    }
    lookAtRows();
    // The picture of a window is as large as the window, which the hand leaves in any size.
    m_application.window().resize(1180, 720);
    wait(100);
    forgetWhatGrowsByDesign();
    Gauge gauge = Gauge::read(m_application.window());
    gauge.seconds = seconds();
    m_rests.append(gauge);
    std::printf("rest at %.0f s: %lld KiB resident, %lld KiB heap, %lld handles, %lld threads, %lld objects\n",
                gauge.seconds, gauge.residentKiB, gauge.heapKiB, gauge.handles, gauge.threads, gauge.objects);
    std::fflush(stdout);
    return true;
}

bool Soak::waitUntil(const std::function<bool()> &isReached)
{
    QElapsedTimer waiting;
    waiting.start();
    while (!isReached()) {
        if (waiting.elapsed() > patience)
            return false;
        m_hand.clearFront();
        wait(10);
    }
    return true;
}

bool Soak::settle()
{
    KelMessageRotation::sharedKelMessageRotation()->stopRotation();
    const auto isSettled = [this] {
        return !m_hand.clearFront() && m_application.actions().isIdle();
    };
    return waitUntil(isSettled);
}

bool Soak::isConnectedAndIdle() const
{
    const auto *status = control<QLabel>(m_application.window(), "toolStripStatusLabelMain");
    return status->text().startsWith(QLatin1String("Connected to ")) && m_application.actions().isIdle();
}

bool Soak::connectAnew()
{
    const int server = std::max(0, serverInUse());
    // What the transcript holds is gone with a connect, so that every rest finds it as it was at the one before.
    m_hand.press(m_hand.page("serversView"), "disconnectButton");
    return waitUntil([this] { return m_application.actions().isIdle(); }) && m_hand.connectTo(server) &&
           waitUntil([this] { return isConnectedAndIdle(); });
}

/// Closes the window as a user does, or what is under way would outlive what it uses.
void Soak::end()
{
    FormMainView &window = m_application.window();
    m_hand.press(m_hand.page("serversView"), "disconnectButton");
    window.close();
    if (!waitUntil([&] { return !window.isVisible() && m_application.actions().isIdle(); }))
        report(QStringLiteral("the window does not close"));
}

int Soak::serverInUse() const
{
    for (int server = 0; server < GameServers::count; ++server) {
        if (m_servers.port(server) == m_application.server().port())
            return server;
    }
    return -1;
}

void Soak::report(const QString &fault)
{
    constexpr qsizetype mostFaults = 50;
    const QString text = QStringLiteral("at %1 s: %2").arg(seconds(), 0, 'f', 0).arg(fault);
    std::printf("FAULT %s\n", qPrintable(text));
    std::fflush(stdout);
    if (m_faults.size() < mostFaults)
        m_faults.append(text);
}
