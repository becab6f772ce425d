#!/usr/bin/env bash
# Quick start: installs what is missing, builds, and starts Horalo in this desktop session.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
BUILD_DIR="$root/build" "$root/scripts/build.sh" -DHORALO_BUILD_TESTS=OFF -DHORALO_BUILD_BENCHMARKS=OFF
exec "$root/build/src/app/horalo" "$@"
