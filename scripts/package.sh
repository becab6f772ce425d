#!/usr/bin/env bash
# Builds the Debian package horalo_<version>_<arch>.deb with CPack, from a build tree of its own
# (BUILD_DIR, default build-package) installed under /usr, without tests or benchmarks, and
# prints the package's path. Extra arguments go to CMake.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
build_dir="${BUILD_DIR:-$root/build-package}"
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-RelWithDebInfo}" \
  -DCMAKE_INSTALL_PREFIX=/usr -DHORALO_BUILD_TESTS=OFF -DHORALO_BUILD_BENCHMARKS=OFF "$@" >/dev/null
ninja -C "$build_dir" -j"$(nproc)" >/dev/null
rm -f "$build_dir"/horalo_*.deb
(cd "$build_dir" && cpack -G DEB >/dev/null)
ls "$build_dir"/horalo_*.deb
