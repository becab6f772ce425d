#include "platform/Clock.h"

#include <chrono>

AbsoluteTime SystemClock::currentAbsoluteTime() const
{
    using namespace std::chrono;
    const auto since1970 = duration<double>(system_clock::now().time_since_epoch()).count();
    return since1970 - kAbsoluteTimeIntervalSince1970;
}
