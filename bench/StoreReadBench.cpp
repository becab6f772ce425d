// Reading a settings file of about 1 MB: an ordinary one against files made to cost the reader
// as much as its limits allow. Every read must stay bounded, whatever the bytes are.

#include "BinaryPlistBuilder.h"
#include "platform/store/PropertyList.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int kMegabyte = 1 << 20;

// The baseline: an XML list of 1 MB of custom formats, as a (very) keen user might keep.
QByteArray OrdinaryXml()
{
    QVariantList formats;
    qsizetype size = 0;
    for (int i = 0; size < kMegabyte; ++i) {
        formats.append(QStringLiteral("%a %d %b, %Y %I:%M:%S %p (%z) #%1").arg(i));
        size += 60;
    }
    return *PropertyListToXml({{QStringLiteral("Custom Dates"), formats}});
}

// 100,000 nested one-element arrays (900 KB).
QByteArray DeepNesting()
{
    BinaryPlistBuilder plist(4);
    for (int i = 0; i < 100000; ++i)
        plist.add(plist.array({i + 1}));
    plist.add(plist.integer(1));
    return plist.build(0);
}

// One array of a million one-byte references to one integer: a million values from 1 MB.
QByteArray WideSharing()
{
    BinaryPlistBuilder plist;
    const int one = plist.add(plist.integer(1));
    return plist.build(plist.add(plist.array(QList<int>(kMegabyte - 64, one))));
}

// Sixty levels of two references to the next: 2^60 values if followed without a budget.
QByteArray ExplodingSharing()
{
    BinaryPlistBuilder plist;
    for (int i = 0; i < 60; ++i)
        plist.add(plist.array({i + 1, i + 1}));
    plist.add(plist.ascii("x"));
    return plist.build(0);
}

// A 900 KB string used over and over: the text budget, not the count of values, ends it.
QByteArray RepeatedText()
{
    BinaryPlistBuilder plist;
    const int text = plist.add(plist.ascii(QByteArray(900 * 1024, 'x')));
    return plist.build(plist.add(plist.array(QList<int>(200, text))));
}

void Read(benchmark::State &state, QByteArray (*make)())
{
    const QByteArray bytes = make();
    for (auto _ : state)
        benchmark::DoNotOptimize(ParsePropertyList(bytes));
    state.SetLabel(std::to_string(bytes.size() / 1024) + " KB");
}

BENCHMARK_CAPTURE(Read, OrdinaryXml, OrdinaryXml)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, DeepNesting, DeepNesting)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, WideSharing, WideSharing)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, ExplodingSharing, ExplodingSharing)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, RepeatedText, RepeatedText)->Unit(benchmark::kMillisecond);

} // namespace
