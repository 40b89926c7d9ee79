#pragma once

#include <QList>
#include <QStringList>

class QObject;

/// What this process holds at one moment.
struct Gauge {
    double seconds = 0;     ///< since the start
    qint64 residentKiB = 0; ///< memory that is in RAM
    qint64 heapKiB = 0;     ///< memory that is allocated and not freed; 0 where the allocator does not tell
    qint64 handles = 0;     ///< without those by which threads are woken
    qint64 threads = 0;
    qint64 objects = 0; ///< QObjects below the window

    static Gauge read(const QObject &window, double seconds);
    QString text() const;
};

/// Compares the last gauges with the first ones; all are taken at rest, when nothing is left that grows by design.
/// @return what has grown beyond what is allowed, for people; also when there are too few gauges to tell.
QStringList growth(const QList<Gauge> &gauges);
