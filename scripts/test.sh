#!/usr/bin/env bash
# Quick start: installs what is missing (test tools included), builds, and runs the whole suite.
# With --sanitize the build and the run use AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh" --with-test-tools

build_dir="$root/build"
extra=()
if [[ "${1:-}" == "--sanitize" ]]; then
  build_dir="$root/build-sanitize"
  extra=(-DHORALO_SANITIZE=ON -DHORALO_BUILD_BENCHMARKS=OFF)
  export BUILD_TYPE=Debug
  export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
  export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
  # Fontconfig keeps a process-lifetime cache that LeakSanitizer would report (see the file).
  export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
fi
BUILD_DIR="$build_dir" "$root/scripts/build.sh" "${extra[@]}"
cd "$build_dir"
ctest --output-on-failure -j"$(nproc)"
