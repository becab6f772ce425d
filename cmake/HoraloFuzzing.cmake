# The build scripts/fuzz.sh makes: every library instrumented for libFuzzer's coverage and
# checked by AddressSanitizer and UndefinedBehaviorSanitizer, so that the harnesses in
# tests/fuzz find faults deep inside the code they call. Only clang has libFuzzer.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "HORALO_BUILD_FUZZERS needs clang (scripts/fuzz.sh picks clang++-14)")
endif()

include(CheckCXXSourceCompiles)
set(CMAKE_REQUIRED_LINK_OPTIONS -fsanitize=fuzzer)
check_cxx_source_compiles([[
#include <cstddef>
#include <cstdint>
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *, std::size_t) { return 0; }
]] HORALO_HAVE_LIBFUZZER)
unset(CMAKE_REQUIRED_LINK_OPTIONS)
if(NOT HORALO_HAVE_LIBFUZZER)
    message(FATAL_ERROR "clang cannot link libFuzzer: install libclang-rt-14-dev")
endif()

add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                    -fno-sanitize-recover=undefined)
add_link_options(-fsanitize=address,undefined)
