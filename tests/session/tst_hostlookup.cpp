#include "DataColumns.h"
#include "HostLookup.h"
#include "Wait.h"

#include <QTest>

// That a name server which does not answer holds nobody up is looked at from outside, in tests/wire.

class HostLookupTest : public QObject
{
    Q_OBJECT
private slots:
    void hosts_data()
    {
        const auto row = dataColumns<QString, QByteArray, QStringList>("host", "asked", "addresses");
        // asked: nothing when the system is not asked
        row("address", "192.0.2.7", QByteArray(), QStringList{"192.0.2.7"});
        row("name", "play.example.org", QByteArray("play.example.org"), QStringList{"203.0.113.5"});
        row("name with other letters", QString::fromUtf8("spiél.example.org"), QByteArray("xn--spil-dpa.example.org"),
            QStringList{"203.0.113.5"});
        row("cut address", "192.0.2", QByteArray(), QStringList());
        row("zero byte", QString::fromLatin1("127.0.0.1\0.a", 12), QByteArray(), QStringList());
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
};

QTEST_GUILESS_MAIN(HostLookupTest)
#include "tst_hostlookup.moc"
