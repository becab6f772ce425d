#!/usr/bin/env bash
# Checks the whole-process benchmark's own tools, so that its figures measure what they claim:
# the stand-in watcher makes Qt export its tray icon over D-Bus; the D-Bus client finds an item
# by its process (Qt registers under its connection's unique name), opens its menu and counts
# every entry of the layout it gets back; and it refuses a process that has no item.
#   tools_check.sh BUILD_DIR      (run inside dbus-run-session)
set -euo pipefail
build="$1"
work="$(mktemp -d)"
pids=()
trap 'for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done; wait 2>/dev/null || true; rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; exit 1; }
source "$(dirname "$0")/panel_host.sh"

start_xvfb
export XDG_RUNTIME_DIR="$work/run"
mkdir -m 700 "$work/run"
unset QT_QPA_PLATFORM
start_watcher "$build/bench/horalo_bench_watcher"

"$build/bench/horalo_bare_tray" >/dev/null 2>&1 &
small=$!
pids+=("$small")
"$build/bench/horalo_bare_tray" 7 >/dev/null 2>&1 &
large=$!
pids+=("$large")

open_menu() {
  for _ in $(seq 50); do
    "$build/bench/horalo_bench_dbusmenu" "$1" "$2" 2>/dev/null && return 0
    sleep 0.1
  done
  return 1
}
line=$(open_menu "$small" 3) || fail "no menu from the bare program"
echo "bare program: $line"
read -r median p10 p90 entries <<<"$line"
[[ "$entries" == 16 ]] || fail "16 entries expected (12, a separator, 3 commands), got $entries"
awk -v a="$p10" -v m="$median" -v b="$p90" 'BEGIN { exit !(a > 0 && a <= m && m <= b) }' ||
  fail "percentiles out of order: $p10 $median $p90"
line=$(open_menu "$large" 3) || fail "no menu from the bare program with 7 entries more"
echo "bare program, 7 entries more: $line"
[[ "$(awk '{ print $4 }' <<<"$line")" == 23 ]] || fail "23 entries expected: $line"
[[ $(wc -l <"$work/items") -ge 2 ]] || fail "the watcher recorded $(wc -l <"$work/items") items, not 2"

# A process with no item on the bus (this shell) is refused, not measured.
status=0
"$build/bench/horalo_bench_dbusmenu" $$ 1 >/dev/null 2>&1 || status=$?
[[ "$status" == 1 ]] || fail "a process without an item gave status $status, not 1"
echo "ok"
