#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QTemporaryDir>
#include <QtNumeric>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <numeric>
#include <optional>
#include <random>
#include <utility>

// The console next to a bare window and to other programs on Qt, all started in turn, so that a machine that changes
// its pace changes it for all. Arguments: rounds, then "name=program" for each further program, then the files of
// "key value" lines that belong into the table.

namespace
{
constexpr double mostStart = 1.2;
constexpr double mostMemory = 1.5;
constexpr double mostStall = 8;

struct Program {
    QString name;
    QStringList command;
    QList<double> starts;   ///< milliseconds
    QList<double> resident; ///< KiB, as is the next
    QList<double> proportional;
};

double median(QList<double> values)
{
    std::sort(values.begin(), values.end());
    return values.isEmpty() ? 0 : values.at(values.size() / 2);
}

qint64 now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
}

double kib(const QByteArray &rollup, const QByteArray &key)
{
    for (const QByteArray &line : rollup.split('\n')) {
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

/// One program from its start until it has settled, in a home folder of its own.
class Run
{
public:
    explicit Run(const Program &program)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            environment.remove(QLatin1String(name));
        environment.insert(QStringLiteral("FIRST_FRAME_FILE"), frameFile());
        environment.insert(QStringLiteral("MEMORY_FILE"), memoryFile());
        environment.insert(QStringLiteral("LD_PRELOAD"),
                           QCoreApplication::applicationDirPath() + QStringLiteral("/libfirst_frame_probe.so"));
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_startedAt = now();
        m_process.start(program.command.first(), program.command.sliced(1));
    }
    ~Run()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    /// @return milliseconds until the first frame; nothing if none comes within half a minute.
    std::optional<double> firstFrame()
    {
        const QByteArray text = awaited(frameFile());
        if (text.isEmpty())
            return std::nullopt;
        return static_cast<double>(text.split('\n').first().toLongLong() - m_startedAt) / 1e6;
    }

    QByteArray memory() { return awaited(memoryFile()); }

private:
    QByteArray awaited(const QString &path)
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 30000 && m_process.state() != QProcess::NotRunning) {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly)) {
                const QByteArray text = file.readAll();
                if (text.endsWith("end\n"))
                    return text;
            }
            m_process.waitForFinished(5);
        }
        return {};
    }

    QString frameFile() const { return m_home.filePath(QStringLiteral("first-frame")); }
    QString memoryFile() const { return m_home.filePath(QStringLiteral("memory")); }

    QTemporaryDir m_home;
    QProcess m_process;
    qint64 m_startedAt = 0;
};

bool measureOnce(Program &program, bool isWarmUp, bool isWithMemory)
{
    Run run(program);
    const std::optional<double> start = run.firstFrame();
    if (!start)
        return false;
    if (isWarmUp)
        return true;
    program.starts.append(*start);
    if (!isWithMemory)
        return true;
    const QByteArray rollup = run.memory();
    program.resident.append(kib(rollup, "Rss:"));
    program.proportional.append(kib(rollup, "Pss:"));
    return true;
}

void printPrograms(const QList<Program> &programs)
{
    const Program &bare = programs.first();
    std::printf("%-26s %14s %7s %12s %7s %12s %7s\n", "", "first frame", "", "RSS after", "", "PSS after", "");
    std::printf("%-26s %14s %7s %12s %7s %12s %7s\n", "program", "ms", "ratio", "start MiB", "ratio", "start MiB",
                "ratio");
    for (const Program &program : programs) {
        const auto ratio = [&](const QList<double> Program::*figures) {
            return median(program.*figures) / std::max(median(bare.*figures), 1e-9);
        };
        std::printf("%-26s %14.1f %7.2f %12.1f %7.2f %12.1f %7.2f\n", qPrintable(program.name), median(program.starts),
                    ratio(&Program::starts), median(program.resident) / 1024, ratio(&Program::resident),
                    median(program.proportional) / 1024, ratio(&Program::proportional));
    }
}

QHash<QString, double> readFigures(const QStringList &paths)
{
    QHash<QString, double> figures;
    for (const QString &path : paths) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("%s cannot be read", qPrintable(path));
        for (const QByteArray &line : file.readAll().split('\n')) {
            const QList<QByteArray> words = line.simplified().split(' ');
            if (words.size() == 2)
                figures.insert(QString::fromLatin1(words.first()), words.last().toDouble());
        }
    }
    return figures;
}

void printFigures(const QHash<QString, double> &figures)
{
    struct Row {
        const char *key;
        const char *text;
        double scale;
        const char *unit;
    };
    constexpr Row rows[]{
        {"memory_after_soak_kib", "memory after the soak", 1.0 / 1024, "MiB"},
        {"stall_p999_ms", "main-loop stalls during exchanges, 99.9th percentile", 1, "ms"},
        {"stall_longest_ms", "main-loop stalls during exchanges, longest", 1, "ms"},
        {"stall_longest_work_ms", "longest work of the main loop at a time, processor time", 1, "ms"},
        {"key_to_echo_ms", "key press to echo", 1, "ms"},
        {"exchange_beyond_waits_ms", "exchange beyond the protocol's waits", 1, "ms"},
        {"connect_beyond_waits_ms", "connect beyond the protocol's waits", 1, "ms"},
        {"connect_exchanges", "exchanges of that connect", 1, ""},
        {"players_refresh_ms", "table of 1,000 players: merged, sorted and painted", 1, "ms"},
        {"players_first_ms", "table of 1,000 players: filled", 1, "ms"},
        {"transcript_million_lines_ms", "transcript of 1,000,000 lines (newest 200,000 kept)", 1, "ms"},
        {"transcript_memory_kib", "memory of that transcript", 1.0 / 1024, "MiB"},
        {"transcript_append_ms", "one more line there, painted", 1, "ms"},
        {"transcript_20000_lines_ms", "20,000 more lines there", 1, "ms"}};
    std::printf("\nThe console at work\n");
    for (const Row &row : rows) {
        const auto figure = figures.constFind(QLatin1String(row.key));
        if (figure == figures.constEnd())
            std::printf("%-58s %10s\n", row.text, "not given");
        else
            std::printf("%-58s %10.2f %s\n", row.text, *figure * row.scale, row.unit);
    }
}

void printGoal(const char *text, double value, double most)
{
    std::printf("%-58s %10.2f   at most %.1f: %s\n", text, value, most,
                qIsNaN(value)   ? "not measured"
                : value <= most ? "met"
                                : "NOT MET");
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int rounds = arguments.value(1).toInt();
    const QString folder = QCoreApplication::applicationDirPath();
    const QString bare = folder + QStringLiteral("/bench_window_bare");
    QList<Program> programs{{QStringLiteral("bare Qt window"), {bare}, {}, {}, {}},
                            {QStringLiteral("window with one text"), {bare, QStringLiteral("text")}, {}, {}, {}},
                            {QStringLiteral("the console"), {folder + QStringLiteral("/../ferrow-rcon")}, {}, {}, {}}};
    QStringList files;
    for (const QString &argument : arguments.sliced(2)) {
        if (argument.contains(QLatin1Char('=')))
            programs.append(
                {argument.section(QLatin1Char('='), 0, 0), {argument.section(QLatin1Char('='), 1)}, {}, {}, {}});
        else
            files.append(argument);
    }
    constexpr int memoryRounds = 5;
    QList<qsizetype> order(programs.size());
    std::iota(order.begin(), order.end(), 0);
    std::mt19937 chance(7);
    for (int round = -1; round < rounds; ++round) {       // the first one warms the caches
        std::shuffle(order.begin(), order.end(), chance); // whom a program follows costs it up to two milliseconds
        for (const qsizetype index : std::as_const(order)) {
            Program &program = programs[index];
            if (!measureOnce(program, round < 0, round < memoryRounds))
                qFatal("%s showed no window", qPrintable(program.name));
        }
    }
    const QHash<QString, double> figures = readFigures(files);
    std::printf("Medians of %d starts in turn, of %d for memory, 2 s after the first frame\n\n", rounds, memoryRounds);
    printPrograms(programs);
    printFigures(figures);
    std::printf("\nGoals\n");
    const Program &console = programs.at(2);
    printGoal("start, next to the bare window", median(console.starts) / median(programs.first().starts), mostStart);
    printGoal("memory after start (RSS), next to the bare window",
              median(console.resident) / median(programs.first().resident), mostMemory);
    printGoal("main-loop stalls, 99.9th percentile in ms", figures.value(QStringLiteral("stall_p999_ms"), qQNaN()),
              mostStall);
    return 0;
}
