#include "Gauge.h"
#include "Traffic.h"

#include <QTemporaryDir>
#include <QTest>

/// The proofs of a soak can fail.
class SoakTest : public QObject
{
    Q_OBJECT
private slots:
    void findsWhatGotLost_data()
    {
        QTest::addColumn<QString>("arrived");
        QTest::addColumn<bool>("isGood");
        QTest::newRow("each once") << "a;a;b" << true;
        QTest::newRow("again, as its answer got lost") << "a;b;b" << true;
        QTest::newRow("more often than sent") << "a;b;b;b" << false;
        QTest::newRow("carried out twice though confirmed at once") << "a;a;a;b" << false;
        QTest::newRow("one lost") << "a;a" << false;
        QTest::newRow("in another order") << "b;a" << false;
        QTest::newRow("never sent") << "a;b;c" << false;
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
        QTest::addColumn<Gauge>("last");
        QTest::addColumn<bool>("isGood");
        const Gauge first{10, 50'000, 20'000, 30, 5, 2'000};
        const auto row = [first](const char *name, qint64 Gauge::*value, qint64 more, bool isGood,
                                 double seconds = 3600) {
            Gauge last = first;
            last.seconds = seconds;
            last.*value += more;
            QTest::newRow(name) << last << isGood;
        };
        row("nothing", &Gauge::heapKiB, 0, true);
        row("caches", &Gauge::heapKiB, 800, true);
        row("heap", &Gauge::heapKiB, 900, false);
        row("resident memory", &Gauge::residentKiB, 4'000, false);
        row("memory while views are shown for the first time", &Gauge::heapKiB, 4'000, true, 300);
        row("sockets of a refresh", &Gauge::handles, 6, true);
        row("handles", &Gauge::handles, 7, false);
        row("handles in a short time", &Gauge::handles, 7, false, 300);
        row("threads of a pool", &Gauge::threads, 3, true);
        row("threads", &Gauge::threads, 4, false);
        row("objects", &Gauge::objects, 21, false);
    }
    void findsWhatGrows()
    {
        QFETCH(Gauge, last);
        const Gauge first{10, 50'000, 20'000, 30, 5, 2'000};
        QTEST(growth({first, first, last, last}).isEmpty(), "isGood");
        QVERIFY(!growth({first}).isEmpty());
    }

    void readsTheTrafficLog()
    {
        const QTemporaryDir folder;
        QFile log(folder.filePath("log.txt"));
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.write("2026-01-01 10:00:00 h (h:50001) Send(1): a\n2026-01-01 10:00:01 h (h:50001) Send(2): a\n"
                  "2026-01-01 10:00:01 h (h:50001)  Res(2): RConResultSuccess numPackets=1\n"
                  "2026-01-01 10:00:02 h (h:50001) SendSingle(1): b\n");
        log.close();
        const QList<RecordedExchange> exchanges = takeExchanges(log.fileName());
        QCOMPARE(exchanges.size(), 2);
        QVERIFY(exchanges.at(0).command == "a" && exchanges.at(0).sends == 2 && exchanges.at(0).isSuccess());
        QVERIFY(exchanges.at(1).command == "b" && exchanges.at(1).sends == 1 && !exchanges.at(1).isSuccess());
        QVERIFY(takeExchanges(log.fileName()).isEmpty());
    }
};

QTEST_APPLESS_MAIN(SoakTest)
#include "tst_soak.moc"
