#include "ActionQueue.h"
#include "Alerts.h"
#include "Catalogues.h"
#include "DvarFetcher.h"
#include "HostLookup.h"
#include "KelGametype.h"
#include "KelMapList.h"
#include "KelPlaylists.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "PlayerList.h"
#include "Preferences.h"
#include "RConExchange.h"
#include "Reconnecting.h"
#include "UnknownDvars.h"

#include <QCoreApplication>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

// The session without the window, driven from outside: commands come on standard input, one a line, and what happens is
// printed, a JSON object a line with the steady clock's time in milliseconds. See tests/wire/console.py.

static void print(const char *event, QJsonObject details = {})
{
    const std::chrono::duration<double, std::milli> now = std::chrono::steady_clock::now().time_since_epoch();
    details.insert("event", QString::fromLatin1(event));
    details.insert("ms", now.count());
    const QByteArray line = QJsonDocument(details).toJson(QJsonDocument::Compact) + '\n';
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fflush(stdout);
}

static QString twoWords(const QString &line, QString *rest)
{
    const qsizetype blank = line.indexOf(QLatin1Char(' '));
    *rest = blank < 0 ? QString() : line.mid(blank + 1);
    return blank < 0 ? line : line.left(blank);
}

/// Presses the first button at once.
class PrintedAlerts final : public Alerts
{
public:
    QCoro::Task<int> run(QString title, QString text, QStringList, AlertManner) override
    {
        print("alert", {{"title", title}, {"text", text}});
        co_return 0;
    }
};

/// What names stand for. A name that is told no address waits for ever, as one of a name server that does not answer.
class ScriptedNames
{
public:
    void tell(const QByteArray &name, const QStringList &addresses)
    {
        const std::lock_guard lock(m_mutex);
        m_addresses.insert(name, addresses);
    }

    HostAddresses resolve(const QByteArray &name)
    {
        std::unique_lock lock(m_mutex);
        m_never.wait(lock, [this, &name] { return !m_addresses.value(name).isEmpty(); });
        return HostAddresses{m_addresses.value(name), {}, false};
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_never;
    QHash<QByteArray, QStringList> m_addresses;
};

class WireDriver : public QObject
{
public:
    WireDriver(const QString &resources, const QString &folder)
        : m_preferences(folder + "/preferences.ini"),
          m_reader(CatalogueFolders{resources, folder}, m_alerts, [] { QCoreApplication::exit(1); }),
          m_playlists(m_server, m_gametypes, m_maps, m_alerts, resources)
    {
        m_server.setCatalogueLoader(&m_catalogues);
        m_server.setHostLookup(&m_lookup);
        connect(&m_server, &KelServer::connectionBegan, &m_actions, &ActionQueue::refuseWaiting);
        connect(&m_reconnecting, &Reconnecting::disconnectWanted, this, [this] { disconnectFromServer(); });
        printEach(&m_actions, &ActionQueue::idle, "idle");
        printEach(&m_actions, &ActionQueue::faulted, "fault", "text");
        printSession();
        printSettings();
        printWaysBack();
        connect(&m_input, &QSocketNotifier::activated, this, &WireDriver::read);
        print("ready");
    }

private:
    using Command = void (WireDriver::*)(const QString &rest);

    void send(const QString &line) { m_actions.start(sendLine(line)); }
    void fetch(const QString &rest) { m_fetcher.askFor(rest.split(QLatin1Char(' '))); }
    void block(const QString &ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms.toInt())); }
    void tryNow(const QString &) { m_reconnecting.tryNow(); }
    void tryPassword(const QString &password) { m_reconnecting.tryPassword(password); }

    /// Prints the signal as `event`, and what it carries under `names`.
    template <typename Sender, typename... Carried, typename... Names>
    void printEach(const Sender *sender, void (Sender::*signal)(Carried...), const char *event, Names... names)
    {
        connect(sender, signal, this, [event, names...](const Carried &...carried) {
            print(event, {{names, carried}...});
        });
    }

    void printSession()
    {
        printEach(&m_server, &KelServer::lookUpBegan, "looking up", "host");
        printEach(&m_server.console(), &Console::messageAppended, "shown", "text");
        printEach(&m_server.console(), &Console::noteAppended, "note", "text");
        printEach(&m_server, &KelServer::isConnectedChanged, "connection", "isConnected");
        connect(&m_server, &KelServer::tabSetChanged, this, [this] {
            print("tabs", {{"set", static_cast<int>(m_server.tabSet())}});
        });
        connect(&m_server, &KelServer::didConnect, this, [this] {
            m_isComplete = true;
            print("connected", {{"catalogued", QJsonArray::fromStringList(m_server.cataloguedDvars())}});
        });
    }

    void printSettings()
    {
        connect(&m_fetcher, &DvarFetcher::settled, this, [this](const QString &name) {
            if (m_server.dvarList().contains(name))
                print("fetched", {{"name", name}});
        });
        printEach(&m_fetcher, &DvarFetcher::progressed, "progress", "done", "total");
        printEach(&m_fetcher, &DvarFetcher::finished, "fetch finished", "unknown", "total");
    }

    void printWaysBack()
    {
        connect(&m_server.link(), &Link::kindChanged, this, [](Link::Kind kind) {
            const char *name = QMetaEnum::fromType<Link::Kind>().valueToKey(static_cast<int>(kind));
            print("link", {{"kind", QString::fromLatin1(name)}});
        });
        connect(&m_reconnecting, &Reconnecting::cameBack, this,
                [this](std::chrono::milliseconds silence, int differences) {
                    print("connected again",
                          {{"silence", static_cast<double>(silence.count())}, {"differences", differences}});
                    m_actions.start(listPlayers());
                });
    }

    void read()
    {
        std::array<char, 4096> buffer{};
        const ssize_t length = ::read(STDIN_FILENO, buffer.data(), buffer.size());
        if (length <= 0) { // whoever started this is gone
            m_input.setEnabled(false);
            quit({});
            return;
        }
        m_unread.append(buffer.data(), length);
        for (qsizetype end = m_unread.indexOf('\n'); end >= 0; end = m_unread.indexOf('\n')) {
            const QString line = QString::fromUtf8(m_unread.left(end));
            m_unread.remove(0, end + 1);
            perform(line);
        }
    }

    void perform(const QString &line)
    {
        static const QHash<QString, Command> commands{
            {"connect", &WireDriver::connectToServer},
            {"disconnect", &WireDriver::disconnectFromServer},
            {"send", &WireDriver::send},
            {"fetch", &WireDriver::fetch},
            {"block", &WireDriver::block},
            {"trynow", &WireDriver::tryNow},
            {"password", &WireDriver::tryPassword},
            {"name", &WireDriver::tellName},
            {"figures", &WireDriver::printFigures},
            {"quit", &WireDriver::quit},
        };
        QString rest;
        const Command command = commands.value(twoWords(line, &rest));
        if (command == nullptr)
            print("unknown command", {{"text", line}});
        else
            (this->*command)(rest);
    }

    void connectToServer(const QString &rest)
    {
        QString after;
        QString password;
        const QString host = twoWords(rest, &after);
        const QString port = twoWords(after, &password);
        m_actions.start(connectAction(host, port, password));
    }

    QCoro::Task<> connectAction(QString host, QString port, QString password)
    {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        m_isComplete = false;
        if (!turn)
            co_return;
        const CatalogueState maps = co_await m_maps.loadMapList();
        if (!turn || maps == CatalogueState::Missing)
            co_return;
        endConnection();
        co_await m_playlists.loadPlaylists();
        if (!turn)
            co_return;
        co_await m_server.connectToHost(host, port, password);
        if (!m_isComplete)
            m_server.forgetVariables();
        if (turn && !m_isComplete)
            endConnection();
        print("connect ended", {{"isComplete", m_isComplete}});
        if (turn && m_isComplete)
            co_await showPlayers();
    }

    void endConnection()
    {
        m_actions.refuseWaiting();
        m_server.disconnect();
    }

    void disconnectFromServer(const QString & = {})
    {
        print("disconnecting");
        m_actions.dropWaiting();
        m_server.cancelExchange();
        endConnection();
        print("disconnected", {{"isIdle", m_actions.isIdle()}});
    }

    QCoro::Task<> sendLine(QString line)
    {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        if (!turn)
            co_return;
        const Arrived arrived = [line](const QString &text) {
            print("arrived", {{"command", line}, {"text", text}});
        };
        const Reply reply = co_await m_server.sendCommand(line, arrived);
        printDone(line, reply);
    }

    static void printDone(const QString &command, const Reply &reply)
    {
        print("done", {{"command", command},
                       {"result", static_cast<int>(reply.result)},
                       {"text", reply.text},
                       {"isCancelled", reply.isCancelled},
                       {"sends", reply.sends},
                       {"doubled", reply.doubled},
                       {"mayBeIncomplete", reply.mayBeIncomplete},
                       {"roundTrip", static_cast<double>(reply.roundTrip.count())}});
    }

    QCoro::Task<> listPlayers()
    {
        const ActionQueue::Turn turn = co_await m_actions.turn();
        if (turn)
            co_await showPlayers();
    }

    QCoro::Task<> showPlayers()
    {
        const QString line = "teamstatus";
        const Reply reply = co_await m_server.sendCommand(line);
        QStringList names;
        for (const PlayerRow &player : parsePlayerList(reply.text).players)
            names.append(player.name);
        if (reply.isSuccess())
            print("players", {{"names", QJsonArray::fromStringList(names)}});
    }

    /// "name NAME ADDRESS ADDRESS…"
    void tellName(const QString &rest)
    {
        QStringList words = rest.split(QLatin1Char(' '));
        const QByteArray name = words.takeFirst().toLatin1();
        m_names->tell(name, words);
    }

    void printFigures(const QString &)
    {
        const LinkState line = m_server.link().figures();
        const std::chrono::duration<double, std::milli> roundTrip =
            line.stats.roundTrip().value_or(std::chrono::milliseconds(-1));
        print("figures", {{"strangers", static_cast<int>(line.stats.strangers())},
                          {"doubled", static_cast<int>(line.stats.doubled())},
                          {"late", static_cast<int>(line.stats.late())},
                          {"gap", static_cast<double>(line.gap.count())},
                          {"roundTrip", roundTrip.count()}});
    }

    void quit(const QString &)
    {
        print("quitting");
        m_actions.close();
        if (m_actions.isIdle()) {
            QCoreApplication::quit();
            return;
        }
        m_server.cancelExchange();
        connect(&m_actions, &ActionQueue::idle, qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    }

    QSocketNotifier m_input{STDIN_FILENO, QSocketNotifier::Read};
    QByteArray m_unread;
    PrintedAlerts m_alerts;
    RConExchange m_exchange;
    std::shared_ptr<ScriptedNames> m_names = std::make_shared<ScriptedNames>();
    SystemHostLookup m_lookup{[names = m_names](const QByteArray &name) {
        return names->resolve(name);
    }};
    Preferences m_preferences;
    KelServer m_server{m_exchange, m_alerts};
    CatalogueReader m_reader;
    KelGametype m_gametypes{m_server, m_reader};
    KelSettings m_settings{m_server, m_reader};
    KelMapList m_maps{m_server, m_reader};
    KelPlaylists m_playlists;
    Catalogues m_catalogues{m_gametypes, m_settings, m_maps, m_playlists};
    ActionQueue m_actions;
    UnknownDvars m_unknown{m_preferences};
    DvarFetcher m_fetcher{m_server, m_actions, m_unknown};
    Reconnecting m_reconnecting{m_server, m_actions, m_alerts, m_fetcher};
    bool m_isComplete = false;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: wire_driver RESOURCES FOLDER\n", stderr);
        return 2;
    }
    const WireDriver driver(arguments.at(1), arguments.at(2));
    const int result = QCoreApplication::exec();
    print("over");
    return result;
}
