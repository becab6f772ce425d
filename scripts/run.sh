#!/usr/bin/env bash
# Quick start: installs what is missing, builds, and starts Horalo in this desktop session.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
# The same build directory and configuration as the tests, building only the application.
BUILD_DIR="$root/build" BUILD_TARGETS=horalo "$root/scripts/build.sh"
exec "$root/build/src/app/horalo" "$@"
