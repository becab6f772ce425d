#!/usr/bin/env bash
# Builds the libFuzzer harnesses of tests/fuzz with clang into build-fuzz (FUZZ_BUILD_DIR), runs
# every seed and regression input of tests/fuzz/corpus through each harness, then fuzzes each for
# SECONDS (default 60). Fails when any harness finds a crash, a leak, a timeout or runs out of
# memory; the input that did it is saved in build-fuzz/artifacts/<harness>/.
#
#   scripts/fuzz.sh [SECONDS]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
seconds="${1:-60}"
[[ $seconds =~ ^[0-9]+$ ]] || { echo "usage: scripts/fuzz.sh [SECONDS]" >&2; exit 2; }
build_dir="${FUZZ_BUILD_DIR:-$root/build-fuzz}"
cc="${FUZZ_CC:-clang-14}"
cxx="${FUZZ_CXX:-clang++-14}"
if ! command -v "$cxx" >/dev/null; then
  echo "fuzz: $cxx is missing; scripts/install-deps.sh --with-test-tools installs it" >&2
  exit 1
fi

cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DHORALO_BUILD_FUZZERS=ON \
  -DHORALO_BUILD_TESTS=OFF -DHORALO_BUILD_BENCHMARKS=OFF >/dev/null
ninja -C "$build_dir" horalo_fuzzers

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
# The renderers' output depends on these; pin them as the tests do.
export LANG=en_US.UTF-8 LC_ALL= TZ=America/New_York

# A slow input is a fault too: no single read or render may take more than a few seconds.
common=(-timeout=10 -rss_limit_mb=2048 -print_final_stats=1)
failed=()
for seeds in "$root"/tests/fuzz/corpus/*/; do
  name="$(basename "$seeds")"
  harness="$build_dir/tests/fuzz/horalo_fuzz_$name"
  artifacts="$build_dir/artifacts/$name"
  corpus="$build_dir/corpus/$name" # grows from run to run; the tree's seeds stay as they are
  mkdir -p "$artifacts" "$corpus"
  echo "== $name: seeds and regression inputs"
  mapfile -t inputs < <(find "$seeds" -type f | sort)
  if ! "$harness" "${common[@]}" -artifact_prefix="$artifacts/" "${inputs[@]}"; then
    failed+=("$name (a seed)")
    continue
  fi
  echo "== $name: fuzzing for $seconds s"
  # Long seeds (deep nesting) are run whole above; mutations stay small enough to be quick.
  if ! "$harness" "${common[@]}" -max_len=8192 -max_total_time="$seconds" \
      -artifact_prefix="$artifacts/" "$corpus" "$seeds" 2>"$build_dir/$name.log"; then
    tail -n 40 "$build_dir/$name.log" >&2
    failed+=("$name")
    continue
  fi
  grep -E '^stat::number_of_executed_units|^stat::peak_rss_mb' "$build_dir/$name.log" || true
done

if ((${#failed[@]})); then
  echo "fuzz: failed: ${failed[*]} (inputs in $build_dir/artifacts)" >&2
  exit 1
fi
echo "fuzz: every harness ran clean"
