#pragma once

#include <cstdio>
#include <cstdlib>

// A property every input must keep. A broken one stops the fuzzer like a crash would, and the
// input is saved with the message on stderr.
inline void FuzzCheck(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "fuzz check failed: %s\n", what);
    std::abort();
}
