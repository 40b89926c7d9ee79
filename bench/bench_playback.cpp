#include "ActionQueue.h"
#include "Alerts.h"
#include "KelMessageRotation.h"
#include "KelServer.h"
#include "LoopbackServer.h"
#include "PreciseOneShotTimer.h"
#include "Preferences.h"
#include "RConExchange.h"

#include <QCoreApplication>
#include <QCoroTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <mutex>
#include <vector>

// How late a message reaches the server: from the moment its timer is due until its datagram is there.

using Clock = std::chrono::steady_clock;

/// Answers everything but "teamstatus", which it leaves without a reply, and notes when each "say" came.
class Server
{
public:
    quint16 port() const { return m_server.port(); }
    std::vector<Clock::time_point> takeSays()
    {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_says, {});
    }

private:
    QList<QByteArray> answer(const QByteArray &request)
    {
        const Clock::time_point now = Clock::now();
        if (request.contains("teamstatus"))
            return {};
        if (request.contains("say")) {
            const std::lock_guard guard(m_mutex);
            m_says.push_back(now);
        }
        return {"rcon_password \"x\"\nsv_hostname \"h\"\nsv_ranked \"0\"\nplaylist_enabled \"0\"\n"
                "playlist_excludeMap \"a\"\nplaylist_excludeGametype \"b\"\nplaylist_excludeGametypeMap \"c\"\n"};
    }

    std::mutex m_mutex;
    std::vector<Clock::time_point> m_says;
    LoopbackServer m_server{[this](const QByteArray &request) {
        return answer(request);
    }};
};

/// The real timer, which tells when it is due.
class NotingTimer final : public OneShotTimer
{
public:
    void start(qint64 seconds, std::function<void()> fired) override
    {
        due.push_back(Clock::now() + std::chrono::seconds(seconds));
        m_timer.start(seconds, std::move(fired));
    }
    void stop() override { m_timer.stop(); }
    std::optional<std::chrono::milliseconds> remaining() const override { return m_timer.remaining(); }

    std::vector<Clock::time_point> due;

private:
    PreciseOneShotTimer m_timer;
};

class FatalAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString title, QString text, QStringList, AlertManner) override
    {
        qFatal("%s: %s", qPrintable(title), qPrintable(text));
        co_return 0;
    }
};

class PlaybackBench : public QObject
{
public:
    QCoro::Task<> run()
    {
        const QString host = "127.0.0.1";
        const QString port = QString::number(m_server.port());
        const QString password = "x";
        co_await m_session.connectToHost(host, port, password);
        m_preferences.setValue("checkBoxLoopMessages", true);
        const QList<MessageRotationInst> messages(1, {"hello", "1"});
        co_await m_messages.addEntries(messages);
        co_await measure(20, "with an idle connection");
        connect(&m_refresh, &QTimer::timeout, this, [this] { m_actions.start(askInVain()); });
        m_refresh.start(std::chrono::seconds(5));
        co_await measure(15, "beside a refresh every 5 s that costs 3.25 s");
        QCoreApplication::quit();
    }

private:
    QCoro::Task<> askInVain()
    {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        const QString line = "teamstatus";
        const Reply reply = co_await m_session.sendCommand(line);
        if (reply.isSuccess())
            qFatal("there was a reply");
    }

    QCoro::Task<> measure(std::size_t count, QString name)
    {
        m_timer->due.clear();
        m_server.takeSays();
        m_messages.startRotation();
        while (m_timer->due.size() <= count)
            co_await QCoro::sleepFor(std::chrono::milliseconds(100));
        m_messages.stopRotation();
        const std::vector<Clock::time_point> says = m_server.takeSays();
        std::vector<double> late; // the first message is sent at once, so the next is what the first timer brings
        for (std::size_t i = 0; i < count && i + 1 < says.size(); ++i)
            late.push_back(std::chrono::duration<double, std::milli>(says[i + 1] - m_timer->due[i]).count());
        std::sort(late.begin(), late.end());
        std::printf("message %s: %.1f ms late, median of %zu; largest %.1f\n", qPrintable(name), late[late.size() / 2],
                    late.size(), late.back());
        std::fflush(stdout);
    }

    QTemporaryDir m_folder;
    Server m_server;
    Preferences m_preferences{m_folder.filePath("preferences.ini")};
    FatalAlerts m_alerts;
    RConExchange m_exchange;
    KelServer m_session{m_exchange, m_alerts};
    ActionQueue m_actions;
    NotingTimer *m_timer = new NotingTimer; // owned by the next
    KelMessageRotation m_messages{
        {m_preferences, m_alerts, m_session, m_actions}, m_folder.path(), std::unique_ptr<OneShotTimer>(m_timer)};
    QTimer m_refresh;
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    PlaybackBench bench;
    QTimer::singleShot(0, &bench, [&bench] { const QCoro::Task<> detached = bench.run(); });
    return QCoreApplication::exec();
}
