#include "Soak.h"

#include "Controls.h"
#include "FormMainView.h"
#include "Hands.h"
#include "LocalServer.h"

#include <QLabel>
#include <QLineEdit>
#include <QPixmapCache>
#include <QSignalBlocker>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <utility>

Soak::Soak(const Plan &plan)
    : m_plan(plan), m_options{.players = 24, .seed = plan.seed}, m_server(startedServer(m_options)),
      m_hand(m_server->port(), plan.folder, plan.seed)
{
    m_options.port = m_server->port();
}

static void print(const QString &line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

bool Soak::perform()
{
    print(QString("seed %1").arg(m_plan.seed));
    m_clock.start();
    m_nextStop = m_plan.secondsBetweenStops;
    open();
    while (seconds() < m_plan.seconds) {
        const double secondsOfWork = std::clamp(m_plan.seconds / 20, 8.0, 180.0);
        work(std::min(seconds() + secondsOfWork, m_plan.seconds));
        if (!rest())
            break;
    }
    end();
    const int restsToWarmUp = m_plan.seconds < 600 ? 1 : 3;
    for (const QString &fault : growth(m_rests.mid(restsToWarmUp)))
        reportIf(fault);
    print(QStringLiteral("%1 exchanges, %2 rows compared").arg(m_exchanges).arg(m_rowsCompared));
    print(m_hasFaults ? "FAILED" : "passed");
    return !m_hasFaults;
}

/// Starts the program, in the same folder as before.
void Soak::open()
{
    m_application.reset();
    const QString &folder = m_plan.folder;
    m_application =
        std::make_unique<AppDelegate>(AppDelegate::Places{folder + "/preferences.ini", {}, folder}, folder + "/none");
    window().show();
    m_hand.connectToServer(window());
}

void Soak::work(double untilSeconds)
{
    m_server->setFaults({.loss = 0.1, .throttle = m_plan.throttle});
    while (seconds() < untilSeconds) {
        const bool isIdle = m_application->actions().isIdle();
        if (isIdle && !window().isVisible())
            open();
        else if (isIdle && !m_application->server().isConnected() && m_hand.below(20) == 0)
            m_hand.connectToServer(window());
        else if (isIdle || m_hand.below(2) == 0) // else its deeds would pile up
            m_hand.act(window());
        QTest::qWait(20 + m_hand.below(200));
        if (m_plan.secondsBetweenStops > 0 && seconds() >= m_nextStop)
            stopOrStartServer();
    }
    if (m_isAway)
        stopOrStartServer();
    m_server->setFaults({});
}

bool Soak::rest()
{
    if (!settle())
        return false;
    lookAtTraffic();
    lookAtTabs();
    if (!leave() || !connect())
        return false;
    lookAtTabs();
    lookAtRows();
    // The picture of a window is as large as the window, which the hand leaves in any size.
    window().resize(1180, 720);
    QTest::qWait(1000); // until the sockets of what has been asked are closed
    forgetWhatGrowsByDesign();
    m_rests.append(Gauge::read(window(), seconds()));
    print(m_rests.last().text());
    if (!leave())
        return false;
    lookAtTraffic(); // the server takes what it has seen with it
    changeMode();
    m_hand.connectToServer(window());
    return true;
}

/// While the server is away the hand goes on.
void Soak::stopOrStartServer()
{
    constexpr double secondsAway = 8;
    m_isAway = !m_isAway;
    m_nextStop = seconds() + (m_isAway ? secondsAway : m_plan.secondsBetweenStops);
    if (m_isAway)
        m_server->stop();
    else
        reportIf(m_server->start() ? QString() : QStringLiteral("the server does not come back"));
}

/// A server in another mode begins a new game.
void Soak::changeMode()
{
    const bool wasRanked = std::exchange(m_options.ranked, m_options.playlists);
    m_options.playlists = !wasRanked && !m_options.ranked;
    m_server.reset(); // which frees the port
    m_server = startedServer(m_options);
}

bool Soak::waitUntil(const char *what, const std::function<bool()> &isReached)
{
    constexpr int patience = 300'000; // milliseconds; loading a long configuration comes to its end by then
    const bool isThere = QTest::qWaitFor([&] { return isReached() || (m_hand.clearFront() && isReached()); }, patience);
    reportIf(isThere ? QString() : QStringLiteral("%1 does not come").arg(QLatin1String(what)));
    return isThere;
}

bool Soak::waitUntilIdle()
{
    return waitUntil("the end of all actions", [this] { return m_application->actions().isIdle(); });
}

bool Soak::settle()
{
    KelMessageRotation::sharedKelMessageRotation()->stopRotation();
    const auto isSettled = [this] {
        return !m_hand.clearFront() && m_application->actions().isIdle() &&
               m_application->server().link().kind() != Link::Kind::Silent;
    };
    const bool isOnce = waitUntil("the end of what was begun", isSettled);
    QTest::qWait(500); // what a server that answers again sets off
    return isOnce && waitUntil("the end of what that set off", isSettled);
}

bool Soak::leave()
{
    if (!window().isVisible())
        open();
    Hands::click(window(), "disconnectButton");
    return waitUntilIdle();
}

/// What the transcript holds is gone with a connect, so that every rest finds it as it was at the one before.
bool Soak::connect()
{
    m_hand.connectToServer(window());
    return waitUntil("a connection over a good line", [this] {
        const auto *status = control<QLabel>(window(), "toolStripStatusLabelMain");
        return status->text().startsWith("Connected to ") && m_application->actions().isIdle();
    });
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
    waitUntil("the end of the window", [this] { return !window().isVisible() && m_application->actions().isIdle(); });
}

/// Nothing when there is no fault.
void Soak::reportIf(const QString &fault)
{
    if (fault.isEmpty())
        return;
    m_hasFaults = true;
    print(QStringLiteral("FAULT at %1 s: %2").arg(seconds(), 0, 'f', 0).arg(fault));
}
