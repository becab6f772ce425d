// The cost of what a click and the title's tick do: a full rebuild of the menu, and one title
// refresh, on the in-memory platform.

#include "app/AppController.h"
#include "app/settings/Settings.h"
#include "datetext/DateText.h"
#include "platform/memory/InMemoryPlatform.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace {

constexpr AbsoluteTime kFriday = 163711907.0;

struct RunningApplication
{
    explicit RunningApplication(int customFormats, bool everyGroup)
    {
        setenv("TZ", "America/New_York", 1);
        setenv("LANG", "en_US.UTF-8", 1);
        platform.userDefaults.setRegistrationProvider(LocaleDefaultsRegistration,
                                                      LocaleDefaultsKeys());
        const QString app = AppIdentifier;
        platform.store.setAppValue(SettingsKey::IncludeDateOnlyItems, everyGroup, app);
        platform.store.setAppValue(SettingsKey::IncludeTimeOnlyItems, everyGroup, app);
        QVariantList formats;
        for (int i = 0; i < customFormats; ++i)
            formats.append(QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z) #%1").arg(i));
        platform.store.setAppValue(SettingsKey::CustomDates, formats, app);
        controller.awakeFromNib();
        controller.applicationWillFinishLaunching();
    }

    InMemoryPlatform platform{kFriday};
    Platform services = platform.platform();
    AppController controller{services, platform.chooserInterface(), nullptr};
};

// Opening the menu: setup reloads the custom formats and buildMenu renders every entry.
void BM_MenuOpening(benchmark::State &state)
{
    RunningApplication app(static_cast<int>(state.range(0)), true);
    for (auto _ : state) {
        app.platform.statusItem()->openMenu();
        benchmark::DoNotOptimize(app.controller.statusMenu().menu()->numberOfItems());
    }
    state.SetLabel("every group, " + std::to_string(state.range(0)) + " custom formats");
}
BENCHMARK(BM_MenuOpening)->Arg(0)->Arg(50)->Unit(benchmark::kMicrosecond);

// The once-a-second title refresh with the default title format.
void BM_TitleRefresh(benchmark::State &state)
{
    RunningApplication app(0, false);
    Timer *timer = app.controller.statusMenu().itemTitleTimer();
    for (auto _ : state) {
        app.controller.itemTitleTimerAction(timer);
        benchmark::DoNotOptimize(app.platform.statusItem()->title());
    }
}
BENCHMARK(BM_TitleRefresh)->Unit(benchmark::kMicrosecond);

} // namespace
