#include "ActionQueue.h"
#include "DvarFetcher.h"
#include "DvarSettingCategory.h"
#include "DvarSettingOutlineView.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "PlaceholderTable.h"
#include "PlayerColumns.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "SettingsOutlineModel.h"
#include "TranscriptView.h"
#include "UnknownDvars.h"

#include <QApplication>
#include <QScrollBar>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

static QString teamstatusOf(int players, int round)
{
    QString text = "num score ping guid name team lastmsg address qport rate\n";
    for (int i = 0; i < players; ++i)
        text += QStringLiteral("%1 %2 %3 90017%1 Player Number %1 lamps 0 10.%4.%5.7:%6 77 25000\n")
                    .arg(i)
                    .arg((i * 37 + round * 11) % 500)
                    .arg((i + round) % 200)
                    .arg(i / 250)
                    .arg(i % 250)
                    .arg(50000 + i);
    return text;
}

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
        transcript.appendConsoleMessage("] status\nmap: ward_harbour\n");
        transcript.grab();
    }
}
BENCHMARK(appendToTranscript)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

constexpr int settingCount = 5000;

/// A catalogue of one group with 5,000 settings in 100 categories.
static QByteArray catalogue()
{
    QByteArray text = "<settings><version>1</version><SettingInst><name>Everything</name>";
    for (int i = 0; i < settingCount; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "<DvarSetting><name>Setting number " + number + "</name><dvar>rule_number_" + number + "</dvar><type>" +
                (i % 3 == 0 ? "bool" : "int") + "</type><description>What setting number " + number +
                " does, told in a sentence of ordinary length.</description><category>Category " +
                QByteArray::number(i % 100) + "</category></DvarSetting>";
    }
    return text + "</SettingInst></settings>";
}

/// The settings shown in a view, with the variables that a session knows.
struct ShownSettings {
    ShownSettings()
    {
        for (int i = 0; i < settingCount; ++i)
            server.addDvarLine(QStringLiteral("rule_number_%1 \"%2\"").arg(i).arg(i % 2));
        settings.takeDocument(XmlDocument::parse(catalogue()).value());
        model.setCategories(settings.selectedSettings());
        view.resize(760, 400);
        view.show();
    }

    QTemporaryDir folder;
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    Preferences preferences{folder.filePath("preferences.ini")};
    UnknownDvars unknownDvars{preferences};
    DvarFetcher fetcher{server, actions, unknownDvars};
    KelSettings settings{server, CatalogueReader({}, alerts, {})};
    SettingsOutlineModel model{server, fetcher};
    DvarSettingOutlineView view{model};
};

static void expandAndPaint(benchmark::State &state)
{
    ShownSettings shown;
    for (auto run : state) {
        shown.view.collapseAll();
        shown.view.expandEveryRow();
        shown.view.grab();
    }
}
BENCHMARK(expandAndPaint)->Unit(benchmark::kMillisecond);

static void scrollAndPaint(benchmark::State &state)
{
    ShownSettings shown;
    shown.view.expandEveryRow();
    QScrollBar *bar = shown.view.verticalScrollBar();
    double longest = 0;
    for (auto run : state) {
        const auto begin = std::chrono::steady_clock::now();
        bar->setValue(bar->value() < bar->maximum() ? bar->value() + bar->pageStep() : 0);
        shown.view.grab();
        longest = std::max(longest,
                           std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    state.counters["longest_ms"] = longest;
}
BENCHMARK(scrollAndPaint)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
