// The cost of what a click and the title's tick do, on the in-memory platform over a real
// settings file: a full rebuild of the menu at 0, 50, 500 and 5,000 custom formats beside Qt's
// own cost of refilling a menu of as many entries, one title refresh, how often each of them
// parses the file, and the resident memory over an hour of simulated ticks.

#include "app/AppController.h"
#include "app/cli/DescribeMenu.h"
#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "datetext/LocaleDefaults.h"
#include "platform/memory/InMemoryPlatform.h"
#include "platform/store/PlistPreferencesStore.h"

#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr AbsoluteTime kFriday = 163711907.0;
// A file is trusted unchanged once its last change lies this far back (the real store waits two
// seconds); the benchmark lets it settle rather than measure the re-parses of a fresh file.
constexpr auto kGranularity = 40ms;

QString CustomFormat(int index)
{
    return QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z) #%1").arg(index);
}

struct RunningApplication
{
    explicit RunningApplication(int customFormats, bool everyGroup)
    {
        setenv("TZ", "America/New_York", 1);
        setenv("LANG", "en_US.UTF-8", 1);
        platform.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                      LocaleDefaultsKeys());
        const QString app = AppIdentifier;
        store.setAppValue(SettingsKey::IncludeDateOnlyItems, everyGroup, app);
        store.setAppValue(SettingsKey::IncludeTimeOnlyItems, everyGroup, app);
        QVariantList formats;
        for (int i = 0; i < customFormats; ++i)
            formats.append(CustomFormat(i));
        store.setAppValue(SettingsKey::CustomDates, formats, app);
        store.appSynchronize(app);
        store.setTimestampGranularityForTesting(kGranularity);
        std::this_thread::sleep_for(kGranularity * 2);
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
        // The first opening parses the settled file once; from then on it is known.
        platform.statusItem()->openMenu();
    }

    QTemporaryDir directory;
    PlistPreferencesStore store{directory.path() + QStringLiteral("/org.horalo.Horalo.plist")};
    InMemoryPlatform platform{kFriday, &store};
    Platform services = platform.platform();
    AppController controller{services, platform.chooserInterface(), nullptr};
};

std::string FormatsLabel(std::int64_t formats)
{
    return "every group, " + std::to_string(formats) + " custom formats";
}

// Opening the menu: setup reloads the custom formats and buildMenu renders every entry.
void BM_MenuOpening(benchmark::State &state)
{
    RunningApplication app(static_cast<int>(state.range(0)), true);
    const int parsesBefore = app.store.fileReadCount();
    for (auto _ : state) {
        app.platform.statusItem()->openMenu();
        benchmark::DoNotOptimize(app.controller.statusMenu().menu()->numberOfItems());
    }
    state.counters["entries"] =
        static_cast<double>(app.controller.statusMenu().menu()->numberOfItems());
    state.counters["parses/opening"] =
        static_cast<double>(app.store.fileReadCount() - parsesBefore) /
        static_cast<double>(state.iterations());
    state.SetLabel(FormatsLabel(state.range(0)));
}
BENCHMARK(BM_MenuOpening)->Arg(0)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);

// The same opening with the file changed before each one: what every opening paid when the
// store parsed the file at each read.
void BM_MenuOpeningChangedFile(benchmark::State &state)
{
    RunningApplication app(static_cast<int>(state.range(0)), true);
    const int parsesBefore = app.store.fileReadCount();
    for (auto _ : state) {
        state.PauseTiming();
        // A new inode: the store cannot take it for the file it parsed.
        const QString path = app.store.filePath();
        QFile::copy(path, path + QStringLiteral(".new"));
        QFile::remove(path);
        QFile::rename(path + QStringLiteral(".new"), path);
        state.ResumeTiming();
        app.platform.statusItem()->openMenu();
    }
    state.counters["parses/opening"] =
        static_cast<double>(app.store.fileReadCount() - parsesBefore) /
        static_cast<double>(state.iterations());
    state.SetLabel(FormatsLabel(state.range(0)));
}
BENCHMARK(BM_MenuOpeningChangedFile)->Arg(0)->Arg(500)->Unit(benchmark::kMicrosecond);

// Qt's own share of an opening: refilling a QMenu with as many entries, their texts already made.
void BM_QtMenuRefill(benchmark::State &state)
{
    RunningApplication app(static_cast<int>(state.range(0)), true);
    QStringList texts;
    for (const QString &line : DescribeMenu(*app.controller.statusMenu().menu()))
        texts.append(line.section(u'\t', 0, 0));
    QMenu menu;
    for (auto _ : state) {
        menu.clear();
        for (const QString &text : texts)
            menu.addAction(text);
        benchmark::DoNotOptimize(menu.actions().size());
    }
    state.counters["entries"] = static_cast<double>(texts.size());
    state.SetLabel(std::to_string(texts.size()) + " entries");
}
BENCHMARK(BM_QtMenuRefill)->Arg(0)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMicrosecond);

// The once-a-second title refresh with the default title format.
void BM_TitleRefresh(benchmark::State &state)
{
    RunningApplication app(0, false);
    Timer *timer = app.controller.statusMenu().itemTitleTimer();
    const int parsesBefore = app.store.fileReadCount();
    for (auto _ : state) {
        app.controller.itemTitleTimerAction(timer);
        benchmark::DoNotOptimize(app.platform.statusItem()->title());
    }
    state.counters["parses/tick"] = static_cast<double>(app.store.fileReadCount() - parsesBefore) /
                                    static_cast<double>(state.iterations());
}
BENCHMARK(BM_TitleRefresh)->Unit(benchmark::kMicrosecond);

// Resident memory in kB, as the kernel counts it.
double ResidentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

// An hour of the running program on the simulated clock: 3,600 title ticks, the menu opened once
// a minute, with 50 custom formats. Memory after the first simulated minute is the baseline.
void BM_SimulatedHour(benchmark::State &state)
{
    RunningApplication app(50, true);
    auto minute = [&app] {
        for (int second = 0; second < 60; ++second)
            app.platform.timers.advance(1.0);
        app.platform.statusItem()->openMenu();
    };
    minute();
    const double afterMinute = ResidentKilobytes();
    for (auto _ : state) {
        for (int i = 0; i < 60; ++i)
            minute();
    }
    const double afterHour = ResidentKilobytes();
    state.counters["rss_minute_kB"] = afterMinute;
    state.counters["rss_hour_kB"] = afterHour;
    state.counters["hour/minute"] = afterHour / afterMinute;
}
BENCHMARK(BM_SimulatedHour)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    // Qt's menus need an application; no window is ever shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
