#pragma once

#include <QList>
#include <QProcess>
#include <QStringList>

/// Simulated game servers in a process of their own, so that what they hold is not counted as the console's: an
/// unranked one, one with playlists and a ranked one. Talking to that process blocks for a moment.
class GameServers
{
public:
    static constexpr int count = 3;

    /// What the process of the servers does: this program, started with the argument "--serve".
    static int serve();

    /// Ends the servers.
    ~GameServers();

    /// @return whether the servers run; they wait for requests then.
    bool start(quint64 seed);

    quint16 port(int server) const { return m_ports.at(server); }
    static QString password() { return QStringLiteral("demo"); }

    /// From now on this share of the requests and of the datagrams of the replies gets lost, and a request is ignored
    /// that comes sooner than `throttle` milliseconds after the last one that was answered.
    void setLine(double loss, int throttle);
    /// The server goes away, and comes back as it was.
    void stop(int server);
    void comeBack(int server);
    /// The commands that arrived since the last call, oldest first.
    QStringList takeCommands(int server);
    /// The values of variables, in the order of their names.
    QStringList values(int server, const QStringList &names);

private:
    QStringList ask(const QString &request);

    QProcess m_process;
    QList<quint16> m_ports;
};
