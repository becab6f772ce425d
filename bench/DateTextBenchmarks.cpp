// What the date texts cost, each against its floor or its nearest standard alternative. The zone
// and locale are pinned before anything reads them, so runs on different machines compare.

#include "datetext/DateText.h"
#include "datetext/LocalEnvironment.h"
#include "datetext/LocaleDefaults.h"
#include "datetext/NSDateExtensions.h"
#include "platform/memory/InMemoryPlatform.h"

#include <benchmark/benchmark.h>
#include <unicode/datefmt.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

// 2006-03-10 14:31:47 EST.
constexpr double kUnixSeconds = 1142019107;
constexpr AbsoluteTime kInstant = kUnixSeconds - kAbsoluteTimeIntervalSince1970;
constexpr const char *kCustomFormat = "%a %d %b, %Y %I:%M:%S %p (%z)";

// What every rendering must do: a fresh locale, zone and formatter.
void BM_StyledFreshFormatter(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(StyledDateTimeString(kInstant, kMediumStyle, kMediumStyle));
}
BENCHMARK(BM_StyledFreshFormatter);

// The floor: one ICU formatter kept across renderings, which the desktop may not do because a
// change of locale or zone would then go unseen.
void BM_StyledKeptFormatter(benchmark::State &state)
{
    const std::optional<icu::Locale> locale = CurrentIcuLocale();
    std::unique_ptr<icu::DateFormat> formatter(icu::DateFormat::createDateTimeInstance(
        icu::DateFormat::kMedium, icu::DateFormat::kMedium, *locale));
    formatter->adoptTimeZone(CurrentIcuTimeZone().release());
    for (auto _ : state) {
        icu::UnicodeString text;
        formatter->format(static_cast<UDate>(kUnixSeconds * 1000.0), text);
        benchmark::DoNotOptimize(
            QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length()));
    }
}
BENCHMARK(BM_StyledKeptFormatter);

// The notation on a calendar date already made, with the launch snapshot's locale dictionary,
// against strftime on a broken-down time already made.
void BM_CalendarFormat(benchmark::State &state)
{
    const QVariantMap dictionary = LocaleDefaultsRegistration();
    const CalendarDate date = CalendarDateWithTimeIntervalSinceReferenceDate(kInstant);
    const QString format = QString::fromLatin1(kCustomFormat);
    for (auto _ : state)
        benchmark::DoNotOptimize(DescriptionWithCalendarFormat(date, format, &dictionary));
}
BENCHMARK(BM_CalendarFormat);

// The same before the launch snapshot exists: English names, no dictionary to read.
void BM_CalendarFormatNoDictionary(benchmark::State &state)
{
    const CalendarDate date = CalendarDateWithTimeIntervalSinceReferenceDate(kInstant);
    const QString format = QString::fromLatin1(kCustomFormat);
    for (auto _ : state)
        benchmark::DoNotOptimize(DescriptionWithCalendarFormat(date, format));
}
BENCHMARK(BM_CalendarFormatNoDictionary);

void BM_Strftime(benchmark::State &state)
{
    const time_t seconds = static_cast<time_t>(kUnixSeconds);
    struct tm broken;
    localtime_r(&seconds, &broken);
    char buffer[256];
    for (auto _ : state) {
        benchmark::DoNotOptimize(strftime(buffer, sizeof buffer, kCustomFormat, &broken));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_Strftime);

// The same two from an instant: the calendar date made in the zone found afresh, against
// localtime_r (which uses the zone glibc cached) and strftime.
void BM_CalendarFormatFromInstant(benchmark::State &state)
{
    const QVariantMap dictionary = LocaleDefaultsRegistration();
    const QString format = QString::fromLatin1(kCustomFormat);
    for (auto _ : state) {
        benchmark::DoNotOptimize(DescriptionWithCalendarFormat(
            CalendarDateWithTimeIntervalSinceReferenceDate(kInstant), format, &dictionary));
    }
}
BENCHMARK(BM_CalendarFormatFromInstant);

void BM_LocaltimeStrftime(benchmark::State &state)
{
    const time_t seconds = static_cast<time_t>(kUnixSeconds);
    char buffer[256];
    for (auto _ : state) {
        struct tm broken;
        localtime_r(&seconds, &broken);
        benchmark::DoNotOptimize(strftime(buffer, sizeof buffer, kCustomFormat, &broken));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_LocaltimeStrftime);

void BM_DefaultDescription(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(DefaultDescription(kInstant));
}
BENCHMARK(BM_DefaultDescription);

void BM_TimesinceWithDepth(benchmark::State &state)
{
    const ManualClock clock(kInstant + 90061);
    for (auto _ : state)
        benchmark::DoNotOptimize(NSDateExtensions(clock, kInstant).timesinceWithDepth(2));
}
BENCHMARK(BM_TimesinceWithDepth);

} // namespace

int main(int argc, char **argv)
{
    setenv("TZ", "America/New_York", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    tzset();
    setlocale(LC_ALL, "");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
