#!/usr/bin/env bash
# Configures and builds Horalo into BUILD_DIR (default: build); BUILD_TARGETS limits what is
# built (default: everything). Extra arguments go to CMake.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build}"
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
# shellcheck disable=SC2086 # the targets are words on purpose
ninja -C "$build_dir" -j"$(nproc)" ${BUILD_TARGETS:-}
