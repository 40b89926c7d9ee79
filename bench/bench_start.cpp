#include <QCoreApplication>
#include <QList>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <ctime>

/// @return milliseconds from the start of the process to its first frame; 0 if it does not report one.
static double startOnce(const QString &program, const QStringList &arguments = {})
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    QProcess process;
    process.start(program, QStringList{QString::number(now.tv_sec * 1000000000LL + now.tv_nsec)} + arguments);
    process.waitForFinished(30000);
    return process.readAllStandardOutput().trimmed().toDouble();
}

static double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// Starts the windows in turn, so that a machine that changes its pace changes it for all.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    constexpr int runs = 21;
    const QString folder = QCoreApplication::applicationDirPath();
    QList<double> bare;
    QList<double> withText;
    QList<double> console;
    QList<double> toBare;
    QList<double> toText;
    for (int run = -1; run < runs; ++run) {
        const double bareTime = startOnce(folder + QStringLiteral("/bench_window_bare"));
        const double textTime = startOnce(folder + QStringLiteral("/bench_window_bare"), {QStringLiteral("text")});
        const double consoleTime = startOnce(folder + QStringLiteral("/bench_window_console"));
        if (bareTime <= 0 || textTime <= 0 || consoleTime <= 0) {
            std::fprintf(stderr, "bench_start: a window did not report its first frame\n");
            return 1;
        }
        if (run < 0) // the first round warms the caches
            continue;
        bare.append(bareTime);
        withText.append(textTime);
        console.append(consoleTime);
        toBare.append(consoleTime / bareTime);
        toText.append(consoleTime / textTime);
    }
    std::printf(
        "start to first frame, medians of %d: bare window %.1f ms, window with one label %.1f ms, console %.1f ms\n"
        "console to bare window %.2f (goal: at most 1.3), to window with one label %.2f\n",
        runs, median(bare), median(withText), median(console), median(toBare), median(toText));
    return 0;
}
