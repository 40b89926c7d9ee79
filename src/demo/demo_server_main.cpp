#include "DemoCommandLine.h"
#include "DemoServer.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>

#include <pthread.h>

namespace
{
constexpr int WrongUse = 2;

void print(std::FILE *file, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    // A failed write is not reported: there is no other place to report it.
    [[maybe_unused]] const std::size_t written =
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), file);
    [[maybe_unused]] const int flushed = std::fflush(file);
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ferrow-demo-server"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FERROW_VERSION));

    const DemoCommandLine line =
        DemoCommandLine::parse(QCoreApplication::arguments(), qEnvironmentVariable("FERROW_DEMO_PASSWORD"));
    if (line.task == DemoCommandLine::Task::ShowText) {
        print(stdout, line.text);
        return 0;
    }
    if (line.task == DemoCommandLine::Task::Refuse) {
        print(stderr, QCoreApplication::applicationName() + QStringLiteral(": ") + line.text + u'\n');
        return WrongUse;
    }

    // Blocked before the server's thread exists, so that this one alone takes the signals, by waiting for them.
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    if (pthread_sigmask(SIG_BLOCK, &ending, nullptr) != 0)
        return 1;

    DemoServer server(line.options);
    QString error;
    if (!server.start(&error)) {
        print(stderr, QCoreApplication::applicationName() + QStringLiteral(": ") + error + u'\n');
        return 1;
    }
    print(stdout, QCoreApplication::translate("main", "Listening on 127.0.0.1:%1").arg(server.port()) + u'\n');
    int signal = 0;
    return sigwait(&ending, &signal) == 0 ? 0 : 1;
}
