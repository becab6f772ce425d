#!/usr/bin/env bash
# Configures and builds Horalo into BUILD_DIR (default: build). Extra arguments go to CMake.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build_dir="${BUILD_DIR:-$root/build}"
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" "$@" >/dev/null
ninja -C "$build_dir" -j"$(nproc)"
