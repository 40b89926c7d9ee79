#include "DemoServer.h"
#include "RCon.h"
#include "RConExchange.h"

#include <QApplication>
#include <QCoroFuture>
#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>

/// What an exchange costs beyond what the protocol itself waits, and how long the main loop stands still meanwhile.
class ExchangeBench : public QObject
{
public:
    explicit ExchangeBench(quint16 port, DemoServer &server) : m_server(server)
    {
        m_request =
            Request{QStringLiteral("127.0.0.1"), port, QStringLiteral("demo"), QStringLiteral("sv_hostname"), false};
        m_heartbeat.setTimerType(Qt::PreciseTimer);
        m_heartbeat.setInterval(1);
        connect(&m_heartbeat, &QTimer::timeout, this, &ExchangeBench::beat);
    }

    QCoro::Task<> run()
    {
        Request single = m_request;
        single.isSingle = true;
        co_await time(single, 200, 0.0, QStringLiteral("exchange of one datagram"));
        // The reply of many datagrams ends with 500 ms of silence.
        co_await time(m_request, 20, 500.0, QStringLiteral("exchange that ends with silence"));
        DemoFaults silence;
        silence.silent = true;
        m_server.setFaults(silence);
        m_longestGap = 0;
        m_beats = 0;
        m_sinceBeat.start();
        m_heartbeat.start();
        co_await time(m_request, 2, 3250.0, QStringLiteral("exchange with a silent server"));
        m_heartbeat.stop();
        std::printf("longest stall of the main loop meanwhile: %.2f ms over %d beats of 1 ms (goal: under 16 ms)\n",
                    m_longestGap, m_beats);
        QApplication::quit();
    }

private:
    QCoro::Task<> time(Request request, int count, double waits, QString name)
    {
        QList<double> beyond;
        for (int i = 0; i < count; ++i) {
            QElapsedTimer clock;
            clock.start();
            const Reply reply = co_await m_exchange.send(request);
            beyond.append(static_cast<double>(clock.nsecsElapsed()) / 1e6 - waits);
            if (reply.result == RConResultError)
                qFatal("the exchange failed");
        }
        std::sort(beyond.begin(), beyond.end());
        std::printf("%s: %.3f ms beyond the protocol's waits, median of %d; largest %.3f (goal: under 2 ms)\n",
                    qPrintable(name), beyond.at(count / 2), count, beyond.last());
        std::fflush(stdout);
    }

    void beat()
    {
        const double gap = static_cast<double>(m_sinceBeat.nsecsElapsed()) / 1e6;
        m_sinceBeat.start();
        m_longestGap = std::max(m_longestGap, gap);
        ++m_beats;
    }

    DemoServer &m_server;
    RConExchange m_exchange;
    Request m_request;
    QTimer m_heartbeat;
    QElapsedTimer m_sinceBeat;
    double m_longestGap = 0;
    int m_beats = 0;
};

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    DemoServer server{DemoOptions{}};
    QString error;
    if (!server.start(&error))
        qFatal("%s", qPrintable(error));
    ExchangeBench bench(server.port(), server);
    QTimer::singleShot(0, &bench, [&bench] { const QCoro::Task<> detached = bench.run(); });
    return QApplication::exec();
}
