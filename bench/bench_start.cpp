#include <QCoreApplication>
#include <QList>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <ctime>

static double startOnce(const QString &program)
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    QProcess process;
    process.start(program, {QString::number(now.tv_sec * 1000000000LL + now.tv_nsec)});
    process.waitForFinished(30000);
    return process.readAllStandardOutput().trimmed().toDouble();
}

static double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Starts both windows in turn, so that a machine that changes its pace changes it for both.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    constexpr int runs = 21;
    const QString folder = QCoreApplication::applicationDirPath();
    QList<double> bare;
    QList<double> console;
    QList<double> ratios;
    for (int run = -1; run < runs; ++run) {
        const double bareTime = startOnce(folder + QStringLiteral("/bench_window_bare"));
        const double consoleTime = startOnce(folder + QStringLiteral("/bench_window_console"));
        if (bareTime <= 0 || consoleTime <= 0) {
            std::fprintf(stderr, "bench_start: a window did not report its first frame\n");
            return 1;
        }
        if (run < 0) // the first pair warms the caches
            continue;
        bare.append(bareTime);
        console.append(consoleTime);
        ratios.append(consoleTime / bareTime);
    }
    std::printf(
        "start to first frame, median of %d: bare window %.1f ms, console %.1f ms, ratio %.2f (goal: at most 1.3)\n",
        runs, median(bare), median(console), median(ratios));
    return 0;
}
