#include "Gauge.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <malloc.h>
#include <unistd.h>

namespace
{
struct Figure {
    const char *name;
    qint64 Gauge::*value;
    double share;   ///< that it may grow by
    qint64 surplus; ///< that it may grow by beyond that
};

// A heap that grows with every deed grows by megabytes in an hour; caches of glyphs and icons take some kilobytes more
// when a picture comes for the first time. Resident memory has the gaps between allocations on top. Threads of a pool
// end when they are idle and begin anew, and a refresh that is under way has its sockets: some are there at one rest
// and not at another.
constexpr Figure figures[] = {
    {"resident KiB", &Gauge::residentKiB, 0.05, 1024},
    {"heap KiB", &Gauge::heapKiB, 0.03, 256},
    {"handles", &Gauge::handles, 0, 6},
    {"threads", &Gauge::threads, 0, 3},
    {"objects", &Gauge::objects, 0.01, 0},
};

/// Until then memory and objects become more with every view and sheet that is shown for the first time.
constexpr double secondsUntilAllWasShown = 600;

qint64 entriesOf(const char *folder)
{
    return QDir(QLatin1String(folder))
        .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot)
        .size();
}

qint64 median(const QList<Gauge> &gauges, qint64 Gauge::*value)
{
    QList<qint64> values;
    for (const Gauge &gauge : gauges)
        values.append(gauge.*value);
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}
} // namespace

Gauge Gauge::read(const QObject &window, double seconds)
{
    const struct mallinfo2 heap = ::mallinfo2();
    QFile file("/proc/self/statm");
    const bool isOpen = file.open(QIODevice::ReadOnly);
    const qint64 pages = isOpen ? file.readAll().split(' ').value(1).toLongLong() : 0;
    file.close();
    const qint64 threads = entriesOf("/proc/self/task");
    return {.seconds = seconds,
            .residentKiB = pages * ::sysconf(_SC_PAGESIZE) / 1024,
            .heapKiB = static_cast<qint64>((heap.uordblks + heap.hblkhd) / 1024),
            .handles = entriesOf("/proc/self/fd") - threads,
            .threads = threads,
            .objects = window.findChildren<QObject *>().size()};
}

QString Gauge::text() const
{
    QString text = QStringLiteral("%1 s:").arg(seconds, 6, 'f', 0);
    for (const Figure &figure : figures)
        text += QStringLiteral(" %1 %2,").arg(this->*figure.value).arg(QLatin1String(figure.name));
    return text.chopped(1);
}

QStringList growth(const QList<Gauge> &gauges)
{
    if (gauges.size() < 2)
        return {"it was too short to tell of growth"};
    const qsizetype window = std::clamp<qsizetype>(gauges.size() / 2, 1, 3);
    const bool wasAllShown = gauges.last().seconds >= secondsUntilAllWasShown;
    QStringList faults;
    for (const Figure &figure : figures) {
        const qint64 first = median(gauges.first(window), figure.value);
        const qint64 last = median(gauges.last(window), figure.value);
        const auto allowed = first + static_cast<qint64>(static_cast<double>(first) * figure.share) + figure.surplus;
        const bool isNeverKept = figure.value == &Gauge::handles || figure.value == &Gauge::threads;
        if (last > allowed && (wasAllShown || isNeverKept))
            faults.append(QStringLiteral("%1 grow from %2 to %3, beyond %4")
                              .arg(QLatin1String(figure.name))
                              .arg(first)
                              .arg(last)
                              .arg(allowed));
    }
    return faults;
}
