#include "DataColumns.h"
#include "Gauge.h"
#include "Traffic.h"

#include <QTest>

/// The proofs of a soak can fail.
class SoakTest : public QObject
{
    Q_OBJECT
private slots:
    void findsWhatGotLost_data()
    {
        const auto row = dataColumns<QString, bool>("arrived", "isGood");
        row("again, as its answer got lost", "a;b;b", true);
        row("carried out twice though confirmed at once", "a;a;a;b", false);
        row("one lost", "a;a", false);
        row("in another order", "b;a", false);
    }
    void findsWhatGotLost()
    {
        QFETCH(QString, arrived);
        const QString success = "RConResultSuccess";
        const QList<RecordedExchange> exchanges{
            {1, "a", 1, {}}, {1, "a", 1, success}, {1, "b", 2, success}}; // the first was called off
        QTEST(trafficFault(exchanges, arrived.split(u';')).isEmpty(), "isGood");
    }

    void findsWhatGrows_data()
    {
        const auto row = dataColumns<qint64 Gauge::*, qint64, double, bool>("value", "more", "seconds", "isGood");
        row("caches", &Gauge::heapKiB, 800, 3600, true);
        row("heap", &Gauge::heapKiB, 900, 3600, false);
        row("memory while views are shown for the first time", &Gauge::heapKiB, 4'000, 300, true);
        row("handles", &Gauge::handles, 7, 3600, false);
        row("threads", &Gauge::threads, 4, 3600, false);
        row("objects", &Gauge::objects, 21, 3600, false);
    }
    void findsWhatGrows()
    {
        using Value = qint64 Gauge::*;
        QFETCH(Value, value);
        QFETCH(qint64, more);
        QFETCH(double, seconds);
        const Gauge first{10, 50'000, 20'000, 30, 5, 2'000};
        Gauge last = first;
        last.seconds = seconds;
        last.*value += more;
        QTEST(growth({first, first, last, last}).isEmpty(), "isGood");
        QVERIFY(!growth({first}).isEmpty());
    }
};

QTEST_APPLESS_MAIN(SoakTest)
#include "tst_soak.moc"
