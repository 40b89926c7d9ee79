#include "Gauge.h"

#include <QDir>
#include <QFile>
#include <QObject>

#include <algorithm>

#include <malloc.h>
#include <unistd.h>

static qint64 entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot).size();
}

static qint64 residentKiB()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * (::sysconf(_SC_PAGESIZE) / 1024);
}

Gauge Gauge::read(const QObject &window)
{
    const struct mallinfo2 heap = ::mallinfo2();
    Gauge gauge;
    gauge.residentKiB = ::residentKiB();
    gauge.heapKiB = static_cast<qint64>((heap.uordblks + heap.hblkhd) / 1024);
    gauge.handles = entriesOf(QStringLiteral("/proc/self/fd"));
    gauge.threads = entriesOf(QStringLiteral("/proc/self/task"));
    gauge.objects = window.findChildren<QObject *>().size();
    return gauge;
}

qint64 median(const QList<Gauge> &gauges, qint64 Gauge::*value)
{
    QList<qint64> values;
    for (const Gauge &gauge : gauges)
        values.append(gauge.*value);
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double slopePerHour(const QList<Gauge> &gauges, qint64 Gauge::*value)
{
    double meanTime = 0;
    double meanValue = 0;
    for (const Gauge &gauge : gauges) {
        meanTime += gauge.seconds / static_cast<double>(gauges.size());
        meanValue += static_cast<double>(gauge.*value) / static_cast<double>(gauges.size());
    }
    double together = 0;
    double spread = 0;
    for (const Gauge &gauge : gauges) {
        together += (gauge.seconds - meanTime) * (static_cast<double>(gauge.*value) - meanValue);
        spread += (gauge.seconds - meanTime) * (gauge.seconds - meanTime);
    }
    return spread > 0 ? together / spread * 3600 : 0;
}
