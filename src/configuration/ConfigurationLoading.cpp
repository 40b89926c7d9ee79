#include "ConfigurationLoading.h"

#include "ActionQueue.h"
#include "Alerts.h"
#include "KelServer.h"
#include "Progress.h"
#include "ServerAction.h"

#include <QCoroFuture>

#include <QtConcurrentRun>

#include <utility>

/// Marks the loading as under way and leaves nothing of it behind, however it ends.
class ConfigurationLoading::Run
{
public:
    explicit Run(ConfigurationLoading &loading) : m_loading(loading)
    {
        m_loading.m_isCancelled = false;
        m_loading.m_isCalledOff = false;
        setUnderWay(true);
    }
    ~Run()
    {
        m_loading.m_progress.end();
        setUnderWay(false);
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

private:
    void setUnderWay(bool isUnderWay)
    {
        m_loading.m_isUnderWay = isUnderWay;
        emit m_loading.isUnderWayChanged(isUnderWay);
    }

    ConfigurationLoading &m_loading;
};

static void takePresentNames(QList<ConfigurationEntry> &entries, const FormerNames &names)
{
    for (ConfigurationEntry &entry : entries) {
        entry.dvar = names.present(entry.dvar);
        if (entry.dvar.startsWith(QLatin1String("playlist_exclude")))
            entry.value = names.presentWords(entry.value);
    }
}

ConfigurationLoading::ConfigurationLoading(KelServer &server, ActionQueue &actions, Alerts &alerts, Progress &progress,
                                           FormerNames formerNames)
    : m_server(server), m_actions(actions), m_alerts(alerts), m_progress(progress),
      m_formerNames(std::move(formerNames))
{
    const auto callOff = [this] {
        m_isCalledOff = true;
        m_progress.end();
    };
    connect(&server, &KelServer::connectionBegan, this, callOff);
    connect(&server, &KelServer::isConnectedChanged, this, [callOff](bool isConnected) {
        if (!isConnected)
            callOff();
    });
}

ConfigurationLoading::~ConfigurationLoading()
{
    m_progress.end();
}

void ConfigurationLoading::beginProgress()
{
    m_progress.begin(tr("Loading configuration..."), [this] { m_isCancelled = true; });
}

QCoro::Task<> ConfigurationLoading::loadFile(QString path)
{
    if (m_isUnderWay || !m_server.isConnected())
        co_return;
    const Run run(*this);
    const std::optional<QString> text = co_await readText(path);
    if (!text || m_isCalledOff)
        co_return;
    beginProgress();
    const QList<ConfigurationEntry> entries = co_await parse(path, *text);
    if (!entries.isEmpty() && !m_isCalledOff)
        co_await write(entries);
}

QCoro::Task<> ConfigurationLoading::loadEntries(QList<ConfigurationEntry> entries)
{
    if (m_isUnderWay || !m_server.isConnected())
        co_return;
    const Run run(*this);
    beginProgress();
    co_await write(entries);
}

QCoro::Task<std::optional<ConfigurationComparison>>
ConfigurationLoading::compareFile(QString path, QHash<QString, QString> dvars, QList<ConfigurationEntry> written)
{
    std::optional<ConfigurationComparison> result;
    if (m_isUnderWay || !m_server.isConnected())
        co_return result;
    const Run run(*this);
    const std::optional<QString> text = co_await readText(path);
    if (!text || m_isCalledOff)
        co_return result;
    const QList<ConfigurationEntry> entries = co_await parse(path, *text);
    if (entries.isEmpty() || m_isCalledOff)
        co_return result;
    const QFuture<ConfigurationComparison> pending =
        QtConcurrent::run([entries, dvars, written] { return ConfigurationComparison(entries, dvars, written); });
    const ConfigurationComparison comparison = co_await pending;
    if (!m_isCalledOff)
        result = comparison;
    co_return result;
}

QCoro::Task<std::optional<QString>> ConfigurationLoading::readText(QString path)
{
    // Elsewhere, since a disk in the network takes its time.
    const QFuture<ConfigurationFile::Content> pending =
        QtConcurrent::run([path] { return ConfigurationFile::read(path); });
    const ConfigurationFile::Content content = co_await pending;
    if (!content.text && !m_isCalledOff) {
        const QString text = tr("The configuration file \"%1\" could not be read. Nothing was written to the "
                                "server.\n\n%2")
                                 .arg(path, content.error);
        co_await m_alerts.run(tr("Load Failed"), text);
    }
    co_return content.text;
}

QCoro::Task<QList<ConfigurationEntry>> ConfigurationLoading::parse(QString path, QString text)
{
    const QFuture<QList<ConfigurationEntry>> pending =
        QtConcurrent::run([text] { return ConfigurationFile::entries(text); });
    QList<ConfigurationEntry> entries = co_await pending;
    if (m_formerNames.haveChangedFor(m_server.dvarList()))
        takePresentNames(entries, m_formerNames);
    const bool areTooMany = entries.size() > ConfigurationFile::mostEntries;
    if (m_isCalledOff || (!entries.isEmpty() && !areTooMany))
        co_return entries;
    m_progress.end();
    entries.clear();
    const QString none =
        tr("\"%1\" sets no variable. A line of a configuration file is the name of a variable, a blank "
           "and its value in double quotes.");
    const QString tooMany = tr("\"%1\" sets more than %2 variables. Nothing was written to the server.");
    const QString reason =
        areTooMany ? tooMany.arg(path, QString::number(ConfigurationFile::mostEntries)) : none.arg(path);
    const QString title = areTooMany ? tr("Load Failed") : tr("Nothing to Load");
    co_await m_alerts.run(title, reason);
    co_return entries;
}

QCoro::Task<> ConfigurationLoading::write(QList<ConfigurationEntry> entries)
{
    qsizetype position = 0;
    qsizetype written = 0;
    m_progress.setDone(0, entries.size());
    for (const ConfigurationEntry &entry : std::as_const(entries)) {
        const WriteEnd end = co_await writeOne(entry);
        if (end == WriteEnd::NotSent || m_isCalledOff)
            break;
        if (end == WriteEnd::Written)
            ++written;
        m_progress.setDone(position++, entries.size());
    }
    m_progress.end();
    if (m_isCalledOff)
        co_return;
    const QString text = tr("%1 of %2 variables were written to the server.")
                             .arg(QString::number(written), QString::number(entries.size()));
    const bool isWhole = written == entries.size();
    m_server.tellOutcome({Outcome::Kind::Setting, tr("Load Config"), {}, text, isWhole, QDateTime::currentDateTime()});
    if (m_isCancelled && position < entries.size())
        co_await tellOfCancel(written, entries.size());
}

QCoro::Task<ConfigurationLoading::WriteEnd> ConfigurationLoading::writeOne(ConfigurationEntry entry)
{
    ServerAction action(m_server, m_actions);
    const bool hasTurn = co_await action.begin();
    m_isCalledOff = m_isCalledOff || !hasTurn;
    if (m_isCalledOff || m_isCancelled)
        co_return WriteEnd::NotSent;
    // Without its quotes, as a server reports values. The session would keep them: a changed password would be sent
    // with them, and the next file would have lines that no loading takes.
    const bool isWritten = co_await action.write(entry.dvar, entry.value);
    m_isCalledOff = m_isCalledOff || !action;
    if (m_isCalledOff)
        co_return WriteEnd::NotSent;
    co_return isWritten ? WriteEnd::Written : WriteEnd::Failed;
}

QCoro::Task<> ConfigurationLoading::tellOfCancel(qsizetype written, qsizetype total)
{
    const QString text = tr("%n of %1 variables were written to the server. The others were left as they are.", nullptr,
                            static_cast<int>(written))
                             .arg(total);
    const QStringList justOk;
    const AlertManner goodNews{.isGoodNews = true}; // it is what was asked for
    co_await m_alerts.run(tr("Loading Cancelled"), text, justOk, goodNews);
}
