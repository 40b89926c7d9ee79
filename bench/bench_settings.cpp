#include "ActionQueue.h"
#include "CatalogueReader.h"
#include "DvarFetcher.h"
#include "DvarSettingCategory.h"
#include "DvarSettingOutlineView.h"
#include "KelServer.h"
#include "KelSettings.h"
#include "Preferences.h"
#include "RecordedAlerts.h"
#include "ScriptedExchange.h"
#include "SettingsOutlineModel.h"
#include "UnknownDvars.h"

#include <QApplication>
#include <QCoroTask>
#include <QFile>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

constexpr int settingCount = 5000;

/// A catalogue of one group with 5,000 settings in 100 categories.
static QByteArray catalogue()
{
    QByteArray text = "<settings><version>1</version><SettingInst><name>Everything</name>";
    for (int i = 0; i < settingCount; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "<DvarSetting><name>Setting number " + number + "</name><dvar>scr_number_" + number + "</dvar><type>" +
                (i % 3 == 0 ? "bool" : "int") + "</type><description>What setting number " + number +
                " does, told in a sentence of ordinary length.</description><category>Category " +
                QByteArray::number(i % 100) + "</category></DvarSetting>";
    }
    return text + "</SettingInst></settings>";
}

/// A session that knows the variables, and the catalogue loaded from a file.
struct Loaded {
    Loaded()
    {
        QFile file(folder.filePath(QStringLiteral("FerrowRcon.default.gameSettingsUnranked")));
        if (!file.open(QIODevice::WriteOnly) || file.write(catalogue()) <= 0)
            qFatal("the catalogue cannot be written");
        file.close();
        for (int i = 0; i < settingCount; ++i)
            server.addDvarLine(QStringLiteral("scr_number_%1 \"%2\"").arg(i).arg(i % 2));
    }

    void load()
    {
        bool isDone = false;
        const auto follow = [](QCoro::Task<CatalogueState> task, bool *done) -> QCoro::Task<> {
            const CatalogueState state = co_await task;
            *done = state == CatalogueState::Ready;
        };
        const QCoro::Task<> detached = follow(settings.loadSettings(), &isDone);
        if (!QTest::qWaitFor([&] { return isDone; }))
            qFatal("the catalogue is not loaded");
    }

    QTemporaryDir folder;
    ScriptedExchange exchange;
    RecordedAlerts alerts;
    KelServer server{exchange, alerts};
    ActionQueue actions;
    Preferences preferences{folder.filePath(QStringLiteral("preferences.ini"))};
    UnknownDvars unknownDvars{preferences};
    DvarFetcher fetcher{server, actions, unknownDvars};
    CatalogueReader reader{{folder.path(), folder.path()}, alerts, [] {
                           }};
    KelSettings settings{server, reader};
};

static void loadCatalogue(benchmark::State &state)
{
    Loaded loaded;
    for (auto run : state)
        loaded.load();
}
BENCHMARK(loadCatalogue)->Unit(benchmark::kMillisecond);

static void expandAndPaint(benchmark::State &state)
{
    Loaded loaded;
    loaded.load();
    SettingsOutlineModel model(loaded.server, loaded.fetcher);
    model.setCategories(loaded.settings.selectedSettings());
    DvarSettingOutlineView view(model);
    view.resize(760, 400);
    view.show();
    for (auto run : state) {
        view.collapseAll();
        view.expandEveryRow();
        view.grab();
    }
}
BENCHMARK(expandAndPaint)->Unit(benchmark::kMillisecond);

static void scrollAndPaint(benchmark::State &state)
{
    Loaded loaded;
    loaded.load();
    SettingsOutlineModel model(loaded.server, loaded.fetcher);
    model.setCategories(loaded.settings.selectedSettings());
    DvarSettingOutlineView view(model);
    view.resize(760, 400);
    view.show();
    view.expandEveryRow();
    QScrollBar *bar = view.verticalScrollBar();
    double longest = 0;
    for (auto run : state) {
        const auto begin = std::chrono::steady_clock::now();
        bar->setValue(bar->value() < bar->maximum() ? bar->value() + bar->pageStep() : 0);
        view.grab();
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
    benchmark::Shutdown();
    return 0;
}
