#include "Soak.h"

#include "Controls.h"
#include "FormMainView.h"
#include "Hands.h"

#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QSignalBlocker>

#include <algorithm>
#include <cstdio>
#include <utility>

static constexpr double loss = 0.1;
static constexpr qint64 patience = 300'000; // milliseconds; loading a long configuration comes to its end by then

static DemoOptions optionsOf(const Soak::Plan &plan)
{
    DemoOptions options;
    options.players = 24;
    options.seed = plan.seed;
    return options;
}

static std::unique_ptr<DemoServer> started(const DemoOptions &options)
{
    auto server = std::make_unique<DemoServer>(options);
    QString error;
    if (!server->start(&error))
        qFatal("%s", qPrintable(error));
    return server;
}

Soak::Soak(const Plan &plan)
    : m_plan(plan), m_options(optionsOf(plan)), m_server(started(m_options)),
      m_hand(m_server->port(), plan.folder, plan.seed)
{
    m_options.port = m_server->port();
}

static void print(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
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
    print(QString("seed %1").arg(m_plan.seed));
    m_clock.start();
    m_nextStop = m_plan.secondsBetweenStops;
    open();
    while (seconds() < m_plan.seconds) {
        work(std::min(seconds() + m_plan.secondsBetweenRests, m_plan.seconds));
        if (!rest())
            break;
    }
    end();
    const QMap<QString, int> deeds = m_hand.deeds();
    for (auto deed = deeds.constKeyValueBegin(); deed != deeds.constKeyValueEnd(); ++deed)
        print(QStringLiteral("%1 %2").arg(deed->second, 6).arg(deed->first));
    for (const QString &line : growth(m_rests.mid(m_plan.restsToWarmUp), &m_faults))
        print(line);
    print(QStringLiteral("%1 exchanges, %2 commands arrived, %3 rows compared, %4 starts, %5 changes of mode")
              .arg(m_exchanges)
              .arg(m_arrivals)
              .arg(m_rowsCompared)
              .arg(m_starts)
              .arg(m_modeChanges));
    print(
        QStringLiteral("%1 beats of the main loop: 99.9 % at most %2 ms late, the longest %3 ms; at most %4 ms of work")
            .arg(m_stalls.beats())
            .arg(m_stalls.quantile(0.999))
            .arg(m_stalls.longest())
            .arg(m_stalls.takeLongestWork()));
    for (const QString &fault : std::as_const(m_faults))
        print(QStringLiteral("FAULT: ") + fault);
    print(m_faults.isEmpty() ? "passed" : "FAILED");
    return m_faults.isEmpty();
}

/// Starts the program, in the same folder as before.
void Soak::open()
{
    m_application.reset();
    const QString &folder = m_plan.folder;
    m_application =
        std::make_unique<AppDelegate>(AppDelegate::Places{folder + "/preferences.ini", {}, folder}, folder + "/none");
    window().show();
    connectToServer();
    ++m_starts;
}

void Soak::connectToServer()
{
    m_hand.connectToServer(window());
    m_isModeKnown = true;
}

void Soak::work(double untilSeconds)
{
    setLine(loss, m_plan.throttle);
    m_stalls.start();
    while (seconds() < untilSeconds) {
        stopOrStartServer();
        const bool isIdle = m_application->actions().isIdle();
        if (isIdle && !window().isVisible())
            open();
        else if (isIdle && !m_application->server().isConnected() && m_hand.below(20) == 0)
            connectToServer();
        else if (isIdle || m_hand.below(2) == 0) // else its deeds would pile up
            m_hand.act(window());
        m_stalls.beginAnew(); // several key strokes at once are the hand's doing
        wait(20 + m_hand.below(200));
    }
    m_stalls.stop();
    if (m_isAway)
        bringServerBack();
    setLine(0, {});
}

void Soak::setLine(double share, std::chrono::milliseconds throttle)
{
    m_options.faults.loss = share;
    m_options.faults.throttle = throttle;
    m_server->setFaults(m_options.faults);
}

/// While the server is away the hand goes on.
void Soak::stopOrStartServer()
{
    constexpr double secondsAway = 8;
    if (m_plan.secondsBetweenStops <= 0 || seconds() < m_nextStop)
        return;
    m_nextStop = seconds() + (m_isAway ? m_plan.secondsBetweenStops : secondsAway);
    if (m_isAway) {
        bringServerBack();
        return;
    }
    m_isAway = true;
    m_server->stop();
}

void Soak::bringServerBack()
{
    m_isAway = false;
    if (m_hand.below(3) == 0)
        changeMode();
    else if (!m_server->start())
        report("the server does not come back");
}

/// A server in another mode begins a new game. Who sent nothing while it was away cannot know of it.
void Soak::changeMode()
{
    const Link::Kind link = m_application->server().link().kind();
    m_isModeKnown = m_isModeKnown && (!isAtServer() || link != Link::Kind::Answering);
    m_isSameGame = false;
    m_commands += m_server->takeCommands();
    const bool wasRanked = std::exchange(m_options.ranked, m_options.playlists);
    m_options.playlists = !wasRanked && !m_options.ranked;
    m_server.reset(); // which frees the port
    m_server = started(m_options);
    ++m_modeChanges;
}

bool Soak::rest()
{
    if (!settle()) {
        report("what was begun does not come to its end");
        return false;
    }
    {
        // Kept no longer than it is looked at, as what the console holds is measured.
        const QList<RecordedExchange> exchanges = takeExchanges(m_plan.folder + "/log.txt");
        lookAtTraffic(exchanges);
        lookAtWrites(exchanges);
    }
    lookAtTabs();
    if (!connectAnew()) {
        report("a connect over a good line does not come to its end");
        return false;
    }
    lookAtTabs();
    lookAtRows();
    // The picture of a window is as large as the window, which the hand leaves in any size.
    window().resize(1180, 720);
    wait(1000); // until the sockets of what has been asked are closed
    forgetWhatGrowsByDesign();
    m_rests.append(Gauge::read(window(), seconds()));
    print(m_rests.last().text());
    if (!leave())
        return false;
    changeMode();
    connectToServer();
    m_isSameGame = true;
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
        return !m_hand.clearFront() && m_application->actions().isIdle() &&
               m_application->server().link().kind() != Link::Kind::Silent;
    };
    if (!waitUntil(isSettled))
        return false;
    wait(500); // what a server that has come back sets off
    return waitUntil(isSettled);
}

bool Soak::isConnectedAndIdle()
{
    const auto *status = control<QLabel>(window(), "toolStripStatusLabelMain");
    return status->text().startsWith("Connected to ") && m_application->actions().isIdle();
}

bool Soak::leave()
{
    if (!window().isVisible())
        open();
    Hands::click(window(), "disconnectButton");
    return waitUntil([this] { return m_application->actions().isIdle(); });
}

/// What the transcript holds is gone with a connect, so that every rest finds it as it was at the one before.
bool Soak::connectAnew()
{
    if (!leave())
        return false;
    connectToServer();
    return waitUntil([this] { return isConnectedAndIdle(); });
}

/// How much of it there is tells nothing about what the console keeps.
void Soak::forgetWhatGrowsByDesign()
{
    QPixmapCache::clear(); // pictures of what was drawn, up to 10 MB
    // A field remembers every key for its undo until it gets another text. Those that are emptied by the console
    // forget.
    for (QLineEdit *field : window().findChildren<QLineEdit *>()) {
        const QString name = field->objectName();
        if (name == "consoleInput" || name == "messageTextField")
            continue;
        const QSignalBlocker blocker(field);
        field->setText(field->text());
    }
}

/// Closes the window as a user does, or what is under way would outlive what it uses.
void Soak::end()
{
    Hands::click(window(), "disconnectButton");
    window().close();
    if (!waitUntil([this] { return !window().isVisible() && m_application->actions().isIdle(); }))
        report("the window does not close");
}

void Soak::lookAtTraffic(QList<RecordedExchange> exchanges)
{
    exchanges.removeIf([this](const RecordedExchange &exchange) { return exchange.port != m_options.port; });
    const QStringList commands = std::exchange(m_commands, {}) + m_server->takeCommands();
    m_exchanges += exchanges.size();
    m_arrivals += commands.size();
    const QString fault = trafficFault(exchanges, commands);
    if (!fault.isEmpty())
        report(fault);
}

void Soak::report(const QString &fault)
{
    constexpr qsizetype mostFaults = 50;
    if (m_faults.size() < mostFaults)
        m_faults.append(QStringLiteral("at %1 s: %2").arg(seconds(), 0, 'f', 0).arg(fault));
    print(QStringLiteral("FAULT ") + fault);
}
