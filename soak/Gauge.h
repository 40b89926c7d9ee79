#pragma once

#include <QList>

class QObject;

/// What this process holds at one moment.
struct Gauge {
    double seconds = 0;     ///< since the start, for whoever draws a line through several
    qint64 residentKiB = 0; ///< memory that is in RAM
    qint64 heapKiB = 0;     ///< memory that is allocated and not freed; 0 where the allocator does not tell
    qint64 handles = 0;
    qint64 threads = 0;
    qint64 objects = 0; ///< QObjects below the window

    static Gauge read(const QObject &window);
};

/// The middle one of a value of several gauges. Not empty.
qint64 median(const QList<Gauge> &gauges, qint64 Gauge::*value);
/// By how much a value grows in an hour, by least squares.
double slopePerHour(const QList<Gauge> &gauges, qint64 Gauge::*value);
