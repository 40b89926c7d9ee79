#include "Soak.h"

#include "AppDelegate.h"
#include "GameServers.h"
#include "Sequence.h"

#include <algorithm>
#include <cstdio>

void Soak::lookAtTraffic(const QList<RecordedExchange> &exchanges)
{
    for (int server = 0; server < GameServers::count; ++server) {
        QList<ExpectedText> expected;
        for (const RecordedExchange &exchange : exchanges) {
            if (exchange.port != m_servers.port(server))
                continue;
            // An answered command has arrived. It may have arrived again when an answer got lost, but no more often
            // than it was sent.
            expected.append({exchange.command, exchange.isSuccess() ? 1 : 0, exchange.sends});
            m_sends += exchange.sends;
            ++m_exchanges;
            m_failedExchanges += exchange.isSuccess() || exchange.isCalledOff() ? 0 : 1;
        }
        const QStringList commands = m_servers.takeCommands(server);
        m_arrivals += commands.size();
        const QString fault = sequenceFault(expected, commands);
        if (!fault.isEmpty())
            report(QStringLiteral("server %1: %2").arg(QString::number(server), fault));
    }
}

void Soak::lookAtMessages(const QList<RecordedExchange> &exchanges)
{
    QStringList notices;
    QStringList quickMessages;
    qint64 failed = 0;
    for (const RecordedExchange &exchange : exchanges) {
        const bool isNotice = exchange.command.startsWith(QLatin1String("say \"Notice"));
        const bool isQuick = exchange.command.startsWith(QLatin1String("say \"Quick"));
        if (isNotice)
            notices.append(exchange.command);
        if (isQuick)
            quickMessages.append(exchange.command);
        failed += (isNotice || isQuick) && !exchange.isSuccess() && !exchange.isCalledOff() ? 1 : 0;
    }
    const QList<ExpectedText> due = m_watch.takeDue() + m_watch.takeQuickMessages();
    const QString fault = sequenceFault(due, notices + quickMessages);
    if (!fault.isEmpty())
        report(QStringLiteral("messages: %1").arg(fault));
    const qint64 calledOff =
        std::count_if(due.begin(), due.end(), [](const ExpectedText &message) { return message.least == 0; });
    const qint64 told = m_hand.takeAlerts().filter(QLatin1String("'Say' returned an error:")).size();
    if (told + calledOff < failed)
        report(QStringLiteral("%1 messages failed, and %2 alerts told so").arg(failed).arg(told));
    m_messages += notices.size() + quickMessages.size();
    m_failedMessages += failed;
}

namespace
{
struct Figure {
    const char *name;
    qint64 Gauge::*value;
    double share;   ///< that it may grow by
    qint64 surplus; ///< that it may grow by beyond that
};

/// Until then resident memory takes a megabyte more with every view and sheet that is shown for the first time.
constexpr double secondsUntilAllWasShown = 600;
} // namespace

/// The first and the last rests are compared: there, everything is closed and the transcript has just been emptied, so
/// that nothing is left which grows by design.
bool Soak::printGrowth() const
{
    // A heap that grows with every deed grows by megabytes in an hour; caches of glyphs and icons take some kilobytes
    // more when a picture comes for the first time. Resident memory has the gaps between allocations on top. Threads of
    // a pool end when they are idle and begin anew; some are there at one rest, and not at another. Each wakes by a
    // handle of its own, which is left out.
    static const Figure figures[] = {
        {"resident KiB", &Gauge::residentKiB, 0.05, 1024},
        {"heap KiB", &Gauge::heapKiB, 0.03, 256},
        {"other handles", &Gauge::handles, 0, 0},
        {"threads", &Gauge::threads, 0, 3},
        {"objects", &Gauge::objects, 0.01, 0},
    };
    QList<Gauge> rests = m_rests.mid(m_plan.restsToWarmUp);
    for (Gauge &gauge : rests)
        gauge.handles -= gauge.threads;
    const qsizetype window = std::max<qsizetype>(1, std::min<qsizetype>(3, rests.size() / 2));
    if (rests.size() < 2) {
        std::printf("too short to tell of growth\n");
        return false;
    }
    bool isSteady = true;
    std::printf("\n%-14s %10s %10s %10s %12s\n", "at the rests", "first", "last", "allowed", "per hour");
    for (const Figure &figure : figures) {
        const qint64 first = median(rests.first(window), figure.value);
        const qint64 last = median(rests.last(window), figure.value);
        const auto allowed = first + static_cast<qint64>(static_cast<double>(first) * figure.share) + figure.surplus;
        const bool isTooEarly = figure.value == &Gauge::residentKiB && m_plan.seconds < secondsUntilAllWasShown;
        const bool isGrowing = last > allowed && !isTooEarly;
        isSteady = isSteady && !isGrowing;
        std::printf("%-14s %10lld %10lld %10lld %12.1f %s\n", figure.name, first, last, allowed,
                    slopePerHour(rests, figure.value), isGrowing ? "GROWS" : (isTooEarly ? "too early to tell" : ""));
    }
    return isSteady;
}

void Soak::printCounts() const
{
    std::printf("\ndeeds of the hand (seed %llu):\n", static_cast<unsigned long long>(m_plan.seed));
    const QMap<QString, int> deeds = m_hand.deeds();
    for (auto deed = deeds.constKeyValueBegin(); deed != deeds.constKeyValueEnd(); ++deed)
        std::printf("  %5d %s\n", deed->second, qPrintable(deed->first));
    std::printf("\n%lld exchanges, %lld failed; %lld datagrams sent, %lld arrived\n", m_exchanges, m_failedExchanges,
                m_sends, m_arrivals);
    std::printf("%lld messages, %lld failed and told so\n", m_messages, m_failedMessages);
    std::printf("%lld rests, %lld rows compared with the servers\n", static_cast<qint64>(m_rests.size()),
                m_rowsCompared);
    const auto print = [](const char *name, const Durations &durations) {
        std::printf("%s, %lld beats of the main loop: 99.9 %% below %.1f ms, the longest %.1f ms\n", name,
                    durations.count(), durations.percentile(0.999), durations.longest());
    };
    print("stalls", m_heartbeat.stalls());
    print("own work between beats", m_heartbeat.ownWork());
    qint64 most = 0;
    for (const Gauge &gauge : m_samples)
        most = std::max(most, gauge.residentKiB);
    if (!m_samples.isEmpty())
        std::printf("memory after %.0f minutes: %lld KiB resident while at work, %lld at most\n", seconds() / 60,
                    m_samples.last().residentKiB, most);
}
