#include "GameServers.h"

#include "DemoServer.h"

#include <QCoreApplication>

#include <array>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

static constexpr int patience = 20000; // milliseconds; a slow machine under a sanitizer included

namespace
{
using Servers = std::array<std::unique_ptr<DemoServer>, GameServers::count>;

void print(const QStringList &lines)
{
    std::cout << lines.size() << '\n';
    for (const QString &line : lines)
        std::cout << line.toUtf8().toPercentEncoding(" \"").constData() << '\n';
    std::cout << std::flush;
}

QStringList answer(const Servers &servers, const QStringList &words, std::array<qsizetype, GameServers::count> &told)
{
    QStringList lines;
    if (words.value(0) == QLatin1String("line")) {
        DemoFaults faults;
        faults.loss = words.value(1).toDouble();
        faults.throttle = std::chrono::milliseconds(words.value(2).toInt());
        for (const auto &server : servers)
            server->setFaults(faults);
        return lines;
    }
    const auto number = static_cast<std::size_t>(words.value(1).toInt());
    if (words.value(0) == QLatin1String("stop")) {
        servers.at(number)->stop();
    } else if (words.value(0) == QLatin1String("start")) {
        if (!servers.at(number)->start())
            qFatal("A server does not come back.");
    } else if (words.value(0) == QLatin1String("commands")) {
        lines = servers.at(number)->commandsSeen().mid(told.at(number));
        told.at(number) += lines.size();
    } else {
        for (const QString &name : words.mid(2))
            lines.append(servers.at(number)->variable(name));
    }
    return lines;
}

DemoOptions optionsOf(std::size_t server, quint64 seed)
{
    DemoOptions options;
    options.players = 24;
    options.seed = seed + server;
    options.playlists = server == 1;
    options.ranked = server == 2;
    return options;
}
} // namespace

int GameServers::serve()
{
    Servers servers;
    std::array<qsizetype, count> told{};
    QStringList ports;
    const quint64 seed = qEnvironmentVariable("FERROW_SOAK_SEED").toULongLong();
    for (std::size_t i = 0; i < servers.size(); ++i) {
        servers.at(i) = std::make_unique<DemoServer>(optionsOf(i, seed));
        if (!servers.at(i)->start())
            return 1;
        ports.append(QString::number(servers.at(i)->port()));
    }
    print(ports);
    for (std::string line; std::getline(std::cin, line);)
        print(answer(servers, QString::fromStdString(line).split(QLatin1Char(' ')), told));
    return 0;
}

GameServers::~GameServers()
{
    m_process.closeWriteChannel(); // the end of its input is the end of the process
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(patience))
        m_process.kill();
}

bool GameServers::start(quint64 seed)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FERROW_SOAK_SEED"), QString::number(seed));
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--serve")});
    if (!m_process.waitForStarted(patience))
        return false;
    for (const QString &port : ask({}))
        m_ports.append(port.toUShort());
    return m_ports.size() == count;
}

QStringList GameServers::ask(const QString &request)
{
    if (!request.isEmpty())
        m_process.write(request.toUtf8() + '\n');
    QStringList lines;
    qsizetype expected = -1;
    while (expected < 0 || lines.size() < expected) {
        if (!m_process.canReadLine() && !m_process.waitForReadyRead(patience))
            qFatal("The servers do not answer any more.");
        while (m_process.canReadLine() && (expected < 0 || lines.size() < expected)) {
            const QByteArray line = m_process.readLine().chopped(1);
            if (expected < 0)
                expected = line.toLongLong();
            else
                lines.append(QString::fromUtf8(QByteArray::fromPercentEncoding(line)));
        }
    }
    return lines;
}

void GameServers::setLine(double loss, int throttle)
{
    const QStringList nothing = ask(QStringLiteral("line %1 %2").arg(loss).arg(throttle));
    Q_ASSERT(nothing.isEmpty());
}

void GameServers::stop(int server)
{
    const QStringList nothing = ask(QStringLiteral("stop %1").arg(server));
    Q_ASSERT(nothing.isEmpty());
}

void GameServers::comeBack(int server)
{
    const QStringList nothing = ask(QStringLiteral("start %1").arg(server));
    Q_ASSERT(nothing.isEmpty());
}

QStringList GameServers::takeCommands(int server)
{
    return ask(QStringLiteral("commands %1").arg(server));
}

QStringList GameServers::values(int server, const QStringList &names)
{
    return ask(QStringLiteral("values %1 %2").arg(QString::number(server), names.join(QLatin1Char(' '))));
}
