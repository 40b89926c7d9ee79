#include "LinkText.h"

#include <QLocale>
#include <QStringList>

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// A request that waits for longer is worth telling.
static constexpr milliseconds shortestTold{1750};

static qint64 wholeMilliseconds(LinkStats::Duration duration)
{
    return std::chrono::round<milliseconds>(duration).count();
}

LinkText::LinkText(const Link &link, std::chrono::steady_clock::time_point now)
    : m_kind(link.kind()), m_figures(link.figures()), m_silentSince(link.silentSince()), m_silentFor(link.silentFor()),
      m_now(now)
{
}

QString LinkText::shortText() const
{
    switch (m_kind) {
    case Link::Kind::Closed:
        return {};
    case Link::Kind::Silent:
        return tr("No answer since %1 (%2 s)")
            .arg(QLocale().toString(m_silentSince.time(), QStringLiteral("HH:mm")))
            .arg(std::chrono::duration_cast<seconds>(m_silentFor).count());
    case Link::Kind::Refused:
        return tr("The password is refused");
    case Link::Kind::Answering:
        break;
    }
    if (m_figures.waitingSince && m_now - *m_figures.waitingSince >= shortestTold)
        return tr("Waiting %1 s…").arg(std::chrono::round<seconds>(m_now - *m_figures.waitingSince).count());
    return lineText();
}

QString LinkText::lineText() const
{
    if (m_figures.isPaced) {
        const double gap = static_cast<double>(m_figures.gap.count()) / 1000;
        return tr("Answers once in %1 s").arg(QLocale().toString(gap, 'g', 2));
    }
    const std::optional<LinkStats::Duration> roundTrip = m_figures.stats.roundTrip();
    if (!roundTrip)
        return {};
    const unsigned unanswered = m_figures.stats.unanswered();
    if (unanswered < 2)
        return tr("%1 ms").arg(wholeMilliseconds(*roundTrip));
    const unsigned share = (unanswered * 100 + m_figures.stats.sends() / 2) / m_figures.stats.sends();
    return tr("%1 ms, %2 % lost").arg(wholeMilliseconds(*roundTrip)).arg(share);
}

QString LinkText::details() const
{
    const LinkStats &stats = m_figures.stats;
    QStringList lines;
    if (stats.roundTrip())
        lines.append(tr("Round trip: %1 ms").arg(wholeMilliseconds(*stats.roundTrip())));
    lines.append(tr("First sends without an answer: %1 of the last %2").arg(stats.unanswered()).arg(stats.sends()));
    lines.append(tr("A request is repeated after %1 ms").arg(wholeMilliseconds(stats.firstWait())));
    if (stats.lastHeard()) {
        const auto ago = std::chrono::duration_cast<seconds>(m_now - *stats.lastHeard());
        lines.append(tr("Last heard: %1 s ago").arg(ago.count()));
    }
    lines.append(tr("Datagrams that came twice: %1, too late: %2, from strangers: %3")
                     .arg(stats.doubled())
                     .arg(stats.late())
                     .arg(stats.strangers()));
    if (m_figures.isPaced)
        lines.append(
            tr("The server ignores requests that come sooner than %1 ms after the last").arg(m_figures.gap.count()));
    return lines.join(QLatin1Char('\n'));
}
