// A clock runs for weeks: opening its menu and ticking its title must not cost memory that is
// never given back. Ten thousand openings spread over a simulated day, with entries chosen, a
// moment picked in the chooser now and then, and the title ticking every second, must leave the
// heap where a warm-up left it.

#include "support/ControllerFixture.h"

#include <QStringList>

#include <algorithm>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define HORALO_HEAP_IS_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HORALO_HEAP_IS_ASAN 1
#endif
#endif

#ifdef HORALO_HEAP_IS_ASAN
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace {

using namespace Qt::StringLiterals;

// The bytes the program holds on the heap. Under AddressSanitizer its own allocator serves
// every allocation and glibc's counters stand still, so the sanitizer is asked instead.
std::size_t HeapInUse()
{
#ifdef HORALO_HEAP_IS_ASAN
    return __sanitizer_get_current_allocated_bytes();
#else
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
#endif
}

constexpr int kOpenings = 10'000;
constexpr int kRounds = 10;
// Far below what a leak of even a few dozen bytes per opening would add (10,000 openings and
// 86,400 ticks), far above the wobble of containers that grow in steps.
constexpr std::size_t kSlack = 64 * 1024;

class HeapStaysFlat : public ControllerFixture
{
protected:
    void SetUp() override
    {
        ControllerFixture::SetUp();
        set(SettingsKey::CustomDates, QStringList{u"%A %e %B %Y, %H:%M:%S %Z"_s, u"%c"_s,
                                                  u"%j/%y %I:%M%p %z %%"_s, u"%q unknown"_s});
        set(SettingsKey::LastTitleDisplayName, u"Medium Time"_s);
        launch();
    }

    // One opening in the user's rhythm: open, sometimes copy an entry, sometimes pick a moment
    // and close the chooser again; then the title ticks on until the next opening.
    void openAndWait(int opening, double secondsUntilNext)
    {
        item().openMenu();
        if (opening % 50 == 0)
            chooseFirst(MenuAction::MediumDateTime);
        if (opening % 500 == 0) {
            ASSERT_TRUE(item().chooseItemTitled(u"Date-Time Chooser"_s));
            platform.datePicker.userChangesDateValue(platform.clock.currentAbsoluteTime() -
                                                     (opening % 7) * kDay);
            item().openMenu();
            platform.chooserWindow.close();
        }
        platform.timers.advance(secondsUntilNext);
    }

    void chooseFirst(MenuAction action)
    {
        Menu &menu = *controller.statusMenu().menu();
        for (int i = 0; i < menu.numberOfItems(); ++i) {
            if (menu.itemAtIndex(i).action == action) {
                menu.activateItemAtIndex(i);
                return;
            }
        }
        FAIL() << "no entry " << MenuActionName(action).data();
    }

    // The in-memory store logs every synchronisation, one line per opening: that record is the
    // test's, not the program's, and is emptied (its capacity kept) between rounds.
    void forgetStoreLog() { platform.ownStore.log.clear(); }
};

TEST_F(HeapStaysFlat, OverTenThousandOpeningsAndADayOfTicks)
{
    const double secondsPerOpening = kDay / kOpenings;

    // Warm-up: every format, the chooser's lines and a change of day have been built once, so
    // the caches that live as long as the process are full.
    for (int opening = 0; opening < kOpenings / kRounds; ++opening)
        openAndWait(opening, kDay / (kOpenings / kRounds));
    forgetStoreLog();
    const std::size_t baseline = HeapInUse();

    QList<std::ptrdiff_t> growth;
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kOpenings / kRounds; ++i)
            openAndWait(round * (kOpenings / kRounds) + i, secondsPerOpening);
        forgetStoreLog();
        growth.append(static_cast<std::ptrdiff_t>(HeapInUse()) -
                      static_cast<std::ptrdiff_t>(baseline));
    }

    // Every fiftieth opening, warm-up included, copied an entry.
    EXPECT_EQ(platform.clipboard.writeCount(), (kOpenings + kOpenings / kRounds) / 50);
    EXPECT_EQ(g_selectedDateTime, 0) << "every chooser was closed";
    QStringList steps;
    for (const std::ptrdiff_t bytes : growth)
        steps.append(QString::number(bytes));
    const std::ptrdiff_t worst = *std::max_element(growth.cbegin(), growth.cend());
    EXPECT_LT(worst, static_cast<std::ptrdiff_t>(kSlack))
        << "heap growth over the warm-up after each tenth of the day, in bytes: "
        << steps.join(u", "_s).toStdString();
}

} // namespace
