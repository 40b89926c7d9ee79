#include "KelServer.h"
#include "PlaceholderTable.h"
#include "PlayerColumns.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "TranscriptView.h"

#include <QApplication>

#include <benchmark/benchmark.h>

static QString dumpOf(int lines)
{
    QString text;
    for (int i = 0; i < lines; ++i)
        text += QStringLiteral("S  scr_variable_number_%1 \"value %2\"\n").arg(i).arg(i * 7);
    return text;
}

static QString teamstatusOf(int players, int round)
{
    QString text = QStringLiteral("num score ping guid name team lastmsg address qport rate\n");
    for (int i = 0; i < players; ++i)
        text += QStringLiteral("%1 %2 %3 90017%1 Player Number %1 allies 0 10.%4.%5.7:%6 77 25000\n")
                    .arg(i)
                    .arg((i * 37 + round * 11) % 500)
                    .arg((i + round) % 200)
                    .arg(i / 250)
                    .arg(i % 250)
                    .arg(28000 + i);
    return text;
}

static void parseDump(benchmark::State &state)
{
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server(exchange, alerts);
    const QString dump = dumpOf(static_cast<int>(state.range(0)));
    for (auto run : state) {
        for (const QStringView line : QStringView(dump).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            server.addDvarLine(line);
    }
    if (server.dvarList().size() != state.range(0))
        state.SkipWithError("lines are missing");
}
BENCHMARK(parseDump)->Arg(20000)->Unit(benchmark::kMillisecond);

/// A reply is parsed and merged into a table that is shown, sorted by a column whose values change; with the painting.
static void refreshPlayers(benchmark::State &state)
{
    ArrayController<PlayerRow> players(playerTableColumns(), playerKey);
    PlaceholderTable table;
    table.setModel(players.arranged());
    table.setSelectionModel(players.selection());
    table.setSortingEnabled(true);
    table.sortByColumn(static_cast<int>(state.range(1)), Qt::DescendingOrder);
    table.resize(900, 600);
    table.show();
    const int count = static_cast<int>(state.range(0));
    const QList<QString> replies{teamstatusOf(count, 0), teamstatusOf(count, 1), teamstatusOf(count, 2)};
    table.selectRow(0);
    int round = 0;
    for (auto run : state) {
        players.mergeContent(parsePlayerList(replies.at(round++ % replies.size())).players);
        table.grab();
    }
}
BENCHMARK(refreshPlayers)->Args({1000, 0})->Args({1000, 5})->Unit(benchmark::kMillisecond);

static void firstPlayers(benchmark::State &state)
{
    const QString reply = teamstatusOf(static_cast<int>(state.range(0)), 0);
    for (auto run : state) {
        ArrayController<PlayerRow> players(playerTableColumns(), playerKey);
        players.arranged()->sort(5, Qt::DescendingOrder);
        players.mergeContent(parsePlayerList(reply).players);
        benchmark::DoNotOptimize(players.arranged()->rowCount());
    }
}
BENCHMARK(firstPlayers)->Arg(1000)->Unit(benchmark::kMillisecond);

/// One more line for a transcript that holds many already, followed to its end and painted.
static void appendToTranscript(benchmark::State &state)
{
    TranscriptView transcript;
    transcript.resize(900, 600);
    transcript.show();
    QString block;
    for (int i = 0; i < 1000; ++i)
        block += QStringLiteral("line %1 of a long evening on the console, with a reply of ordinary length\n").arg(i);
    for (int i = 0; i < state.range(0); i += 1000)
        transcript.appendConsoleMessage(block);
    for (auto run : state) {
        transcript.appendConsoleMessage(QStringLiteral("] status\nmap: mp_harbour\n"));
        transcript.grab();
    }
}
BENCHMARK(appendToTranscript)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
