#include "RConExchange.h"
#include "UdpSocket.h"
#include "Wait.h"

#include <QElapsedTimer>
#include <QTest>

using namespace std::chrono_literals;

// What a server sees of an exchange, and when, is looked at from outside, in tests/wire.

static Request requestTo(const UdpSocket &peer, const QString &command = QStringLiteral("status"))
{
    return Request{"127.0.0.1", peer.port(), "secret", command, false, false};
}

static QByteArray framed(const QByteArray &payload)
{
    return "\xff\xff\xff\xff\x01print\n" + payload;
}

class RConExchangeTest : public QObject
{
    Q_OBJECT
private slots:
    void isCalledOffByWhoReadsIt()
    {
        const UdpSocket peer;
        RConExchange exchange;
        int count = 0;
        const Arrived arrived = [&](const QString &) {
            ++count;
            exchange.cancel();
        };
        QCoro::Task<Reply> sending = exchange.send(requestTo(peer), arrived);
        const sockaddr_in console = peer.receivedFrom();
        peer.send(framed("a"), console);
        peer.send(framed("b"), console);
        QVERIFY(awaited(std::move(sending)).isCancelled);
        QCOMPARE(count, 1);
    }

    void emptyAnswersToWritesAreLearnt()
    {
        const UdpSocket peer;
        RConExchange exchange;
        QList<bool> areQuick;
        for (int i = 0; i < 5; ++i) {
            QElapsedTimer timer;
            timer.start();
            QCoro::Task<Reply> sending = exchange.send(requestTo(peer, "setadmindvar a \"1\""));
            peer.send(framed(""), peer.receivedFrom());
            QVERIFY(awaited(std::move(sending)).isSuccess());
            areQuick.append(timer.elapsed() < 450);
        }
        QCOMPARE(areQuick, QList<bool>({false, false, false, true, true}));
        QVERIFY(exchange.link().stats.lastHeard());
        exchange.startOver();
        QVERIFY(!exchange.link().stats.lastHeard());
    }

    /// Whoever waits for a server to come back learns nothing of its haste, however often he asks.
    void probesTeachNoHaste()
    {
        const UdpSocket peer;
        RConExchange exchange;
        Request probe = requestTo(peer, QStringLiteral("sv_hostname"));
        probe.isBackground = true;
        probe.isProbe = true;
        for (int i = 0; i < 6; ++i)
            QCOMPARE(awaited(exchange.send(probe)).result, RConResultTimeout);
        QVERIFY(!exchange.link().isPaced);
        QCOMPARE(exchange.link().backgroundDelay, std::optional(0ms));
    }
};

QTEST_GUILESS_MAIN(RConExchangeTest)
#include "tst_rconexchange.moc"
