#include "HostAndPort.h"

#include <QTest>

class HostAndPortTest : public QObject
{
    Q_OBJECT
private slots:
    void takesATextApart_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        const auto row = [](const char *title, const char *text, const char *host, const char *port) {
            QTest::newRow(title) << QString(text) << QString(host) << QString(port);
        };
        row("an address", "192.0.2.10", "192.0.2.10", "");
        row("an address with a port", "192.0.2.10:50960", "192.0.2.10", "50960");
        row("a name with a port", "game.example:50960", "game.example", "50960");
        row("blanks around", " 192.0.2.10\t", "192.0.2.10", "");
        row("blanks around both", " 192.0.2.10 : 50960 ", "192.0.2.10", "50960");
        row("a port that is no number is judged later", "192.0.2.10:x", "192.0.2.10", "x");
        row("nothing behind the colon", "192.0.2.10:", "192.0.2.10:", "");
        row("nothing before the colon", ":50960", ":50960", "");
        row("two colons", "2001:db8:1", "2001:db8:1", "");
        row("brackets", "[192.0.2.10]:50960", "[192.0.2.10]:50960", "");
        row("nothing", " ", "", "");
    }
    void takesATextApart()
    {
        QFETCH(QString, text);
        const HostAndPort parts = splitHostAndPort(text);
        QTEST(parts.host, "host");
        QTEST(parts.port, "port");
    }
};

QTEST_APPLESS_MAIN(HostAndPortTest)
#include "tst_hostandport.moc"
