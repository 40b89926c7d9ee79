#pragma once

#include "ConfigurationComparison.h"
#include "ConfigurationFile.h"
#include "FormerNames.h"

#include <QCoroTask>

#include <QHash>
#include <QList>
#include <QObject>

#include <optional>

class ActionQueue;
class Alerts;
class KelServer;
class Progress;

/// Reads configuration files and writes what they set to the server. Every write takes a turn of its own, so that a
/// message or a refresh that is due goes in between. One loading at a time; disconnecting and another connection end it
/// without an alert. Main thread only.
class ConfigurationLoading : public QObject
{
    Q_OBJECT
public:
    /// Everything handed in outlives this; `progress` is this one's alone.
    /// @param formerNames  what files may call by a former name.
    ConfigurationLoading(KelServer &server, ActionQueue &actions, Alerts &alerts, Progress &progress,
                         FormerNames formerNames = {});
    ~ConfigurationLoading() override;

    /// Writes the variables of the file at `path`, and tells what went wrong. The action that calls it has no turn.
    QCoro::Task<> loadFile(QString path);
    /// Writes `entries` in their order. The action that calls it has no turn.
    QCoro::Task<> loadEntries(QList<ConfigurationEntry> entries);
    /// Compares what the file at `path` sets; the other arguments are those of ConfigurationComparison.
    /// @return nothing if it sets nothing, which the user has been told, or if the connection has ended meanwhile.
    QCoro::Task<std::optional<ConfigurationComparison>> compareFile(QString path, QHash<QString, QString> dvars,
                                                                    QList<ConfigurationEntry> written);

    bool isUnderWay() const { return m_isUnderWay; }

signals:
    void isUnderWayChanged(bool isUnderWay);

private:
    class Run;
    enum class WriteEnd { NotSent, Failed, Written };

    void beginProgress();
    QCoro::Task<std::optional<QString>> readText(QString path);
    /// By present names where the server goes by them.
    /// @return nothing if that is all the text sets, or if it sets too much; the user has been told so.
    QCoro::Task<QList<ConfigurationEntry>> parse(QString path, QString text);
    QCoro::Task<> write(QList<ConfigurationEntry> entries);
    QCoro::Task<WriteEnd> writeOne(ConfigurationEntry entry);
    QCoro::Task<> tellOfCancel(qsizetype written, qsizetype total);

    KelServer &m_server;
    ActionQueue &m_actions;
    Alerts &m_alerts;
    Progress &m_progress;
    FormerNames m_formerNames;
    bool m_isUnderWay = false;
    bool m_isCancelled = false; ///< by the user, who is told how far it came
    bool m_isCalledOff = false; ///< with the connection
};
