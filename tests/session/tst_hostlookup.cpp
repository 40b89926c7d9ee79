#include "HostLookup.h"
#include "Wait.h"

#include <QElapsedTimer>
#include <QTest>

#include <semaphore>

class HostLookupTest : public QObject
{
    Q_OBJECT
private slots:
    void hosts_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QByteArray>("asked"); // nothing when the system is not asked
        QTest::addColumn<QStringList>("addresses");
        QTest::newRow("address") << "192.0.2.7" << QByteArray() << QStringList{"192.0.2.7"};
        QTest::newRow("name") << "play.example.org" << QByteArray("play.example.org") << QStringList{"203.0.113.5"};
        QTest::newRow("name with other letters")
            << QString::fromUtf8("spiél.example.org") << QByteArray("xn--spil-dpa.example.org")
            << QStringList{"203.0.113.5"};
        QTest::newRow("cut address") << "192.0.2" << QByteArray() << QStringList();
        QTest::newRow("number") << "127" << QByteArray() << QStringList();
        QTest::newRow("empty") << "" << QByteArray() << QStringList();
        QTest::newRow("zero byte") << QString::fromLatin1("127.0.0.1\0.a", 12) << QByteArray() << QStringList();
    }
    void hosts()
    {
        QFETCH(QString, host);
        QFETCH(QStringList, addresses);
        QByteArray asked;
        SystemHostLookup lookup([&asked](const QByteArray &name) {
            asked = name;
            return HostAddresses{{"203.0.113.5"}, {}, false};
        });
        const HostAddresses found = awaited(lookup.find(host));
        QTEST(asked, "asked");
        QCOMPARE(found.addresses, addresses);
        QCOMPARE(found.error, addresses.isEmpty() ? QString("No such host is known.") : QString());
    }

    void theSystemKnowsThisMachine()
    {
        QCOMPARE(SystemHostLookup::resolve("localhost").addresses, QStringList{"127.0.0.1"});
        const HostAddresses none = SystemHostLookup::resolve("nobody.invalid");
        QVERIFY(none.addresses.isEmpty() && !none.error.isEmpty());
    }

    void aNameServerThatDoesNotAnswer()
    {
        const auto answered = std::make_shared<std::binary_semaphore>(0);
        QElapsedTimer timer;
        {
            SystemHostLookup lookup([answered](const QByteArray &) {
                answered->acquire();
                return HostAddresses{{"203.0.113.5"}, {}, false};
            });
            QCoro::Task<HostAddresses> finding = lookup.find("play.example.org");
            timer.start();
            lookup.cancel();
            QVERIFY(awaited(std::move(finding)).isCancelled);
        }
        QVERIFY2(timer.elapsed() < 50, QByteArray::number(timer.elapsed()));
        answered->release(); // it answers in the end, to nobody
    }
};

QTEST_GUILESS_MAIN(HostLookupTest)
#include "tst_hostlookup.moc"
