#pragma once

#include "platform/AbsoluteTime.h"

// The source of "now". The desktop reads the system clock; tests and the command line set it.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual AbsoluteTime currentAbsoluteTime() const = 0;
};

// The system's real-time clock, with sub-millisecond resolution.
class SystemClock final : public Clock
{
public:
    AbsoluteTime currentAbsoluteTime() const override;
};
